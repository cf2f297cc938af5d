// An automation server with the members of PowerPoint's object model that a build uses. It keeps
// what it is told in memory and a log of every call with the types of its arguments. Three members
// of the application are for tests alone and are not logged: "FakeScript" (put) clears the log and
// takes "fail N", "die N", "hang N" (at the N-th call from there) or "busy N M" (the N-th and the
// M-1 requests after it are turned away); "FakeLog" writes the calls to a file and "FakeObjects"
// tells how many objects are held.

#include "presentation/powerpoint/fake_powerpoint.h"

#include <windows.h>

#include <oleauto.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

enum class Kind
{
    Application,
    Presentations,
    Presentation,
    Slides,
    Slide,
    DocumentWindow,
    Selection,
    SlideRange,
    Shapes,
    Shape,
    TextFrame,
    TextRange,
};
const wchar_t* const kindNames[] = {
    L"Application", L"Presentations", L"Presentation", L"Slides", L"Slide",     L"DocumentWindow",
    L"Selection",   L"SlideRange",    L"Shapes",       L"Shape",  L"TextFrame", L"TextRange"};

/// The shapes of each slide of each presentation; true is a picture.
std::vector<std::vector<std::vector<bool>>> presentations;
int visible = 0;
int currentSlide = -1;

std::wstring callLog;
std::wstring fault;
long calls = 0;
long requests = 0;
long faultAt = 0;
long faultCount = 0;
LONG objects = 0;
DWORD classCookie = 0;
DWORD mainThread = 0;

using Refusal = const wchar_t*;

class Object;
struct Call
{
    Object& self;
    std::vector<VARIANT> arguments;
    VARIANT* result;

    [[nodiscard]] int number(size_t index) const
    {
        VARIANT converted{};
        if (FAILED(
                VariantChangeType(&converted, const_cast<VARIANT*>(&arguments[index]), 0, VT_I4))) {
            throw Refusal(L"Type mismatch.");
        }
        return converted.lVal;
    }
    [[nodiscard]] int position(size_t index, size_t upTo) const
    {
        const int position = number(index);
        if (position < 1 || size_t(position) > upTo) {
            throw Refusal(L"Integer out of range.");
        }
        return position - 1;
    }
    void give(Kind kind, int slide = -1, int shape = -1) const;
    void give(LONG value) const
    {
        result->vt = VT_I4;
        result->lVal = value;
    }
};

struct Member
{
    Kind kind;
    const wchar_t* name;
    WORD how;
    size_t arguments;
    std::function<void(const Call&)> act;
};
extern const std::vector<Member> members;

class Object final : public IDispatch
{
public:
    Object(Kind kind, int slide, int shape)
        : kind_(kind)
        , slide_(slide)
        , shape_(shape)
    {
        ++objects;
    }
    virtual ~Object()
    {
        if (--objects == 0) {
            PostThreadMessageW(mainThread, WM_QUIT, 0, 0);
        }
    }

    STDMETHODIMP QueryInterface(REFIID id, void** result) override
    {
        const bool known = id == IID_IUnknown || id == IID_IDispatch;
        *result = known ? this : nullptr;
        return known ? (AddRef(), S_OK) : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override
    {
        for (size_t i = 0; i < members.size(); ++i) {
            if (members[i].kind == kind_ && _wcsicmp(members[i].name, names[0]) == 0) {
                ids[0] = DISPID(i + 1);
                return S_OK;
            }
        }
        return DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD how, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* info, UINT*) override;

    [[nodiscard]] auto& slides() const { return presentations.back(); }
    [[nodiscard]] auto& shapes() const { return slides()[size_t(slide_)]; }
    [[nodiscard]] bool isPicture() const { return shapes()[size_t(shape_)]; }
    [[nodiscard]] int slide() const { return slide_; }
    [[nodiscard]] int shape() const { return shape_; }

private:
    ULONG references_ = 0;
    Kind kind_;
    int slide_;
    int shape_;
};

void Call::give(Kind kind, int slide, int shape) const
{
    auto* object = new Object(kind, slide, shape);
    object->AddRef();
    if (result) {
        result->vt = VT_DISPATCH;
        result->pdispVal = object;
    } else {
        object->Release();
    }
}

void needPresentation(const Call&)
{
    if (presentations.empty()) {
        throw Refusal(L"There is no active presentation.");
    }
}

auto giving(Kind kind)
{
    return [kind](const Call& call) {
        needPresentation(call);
        call.give(kind, call.self.slide(), call.self.shape());
    };
}

/// Whatever becomes of the test, the server must not go on for ever.
void keepRunning()
{
    static UINT_PTR timer = 0;
    timer =
        SetTimer(nullptr, timer, 300'000, [](HWND, UINT, UINT_PTR, DWORD) { PostQuitMessage(1); });
}

void setScript(const Call& call)
{
    keepRunning();
    wchar_t what[16] = L"";
    faultAt = faultCount = calls = requests = 0;
    swscanf(call.arguments[0].bstrVal, L"%15ls %ld %ld", what, &faultAt, &faultCount);
    fault = what;
    callLog.clear();
}

constexpr WORD get = DISPATCH_PROPERTYGET;
constexpr WORD put = DISPATCH_PROPERTYPUT;
constexpr WORD method = DISPATCH_METHOD;

void addShape(const Call& call, bool picture)
{
    call.self.shapes().push_back(picture);
    call.give(Kind::Shape, call.self.slide(), int(call.self.shapes().size()) - 1);
}

const std::vector<Member> members{
    {Kind::Application, L"FakeScript", put, 1, setScript},
    {Kind::Application, L"FakeLog", method, 1,
     [](const Call& call) {
         std::FILE* file = _wfopen(call.arguments[0].bstrVal, L"wb");
         for (const wchar_t unit : callLog) {
             std::fwrite(&unit, sizeof unit, 1, file);
         }
         std::fclose(file);
     }},
    {Kind::Application, L"FakeObjects", get, 0, [](const Call& call) { call.give(objects); }},
    {Kind::Application, L"Presentations", get, 0,
     [](const Call& call) { call.give(Kind::Presentations); }},
    {Kind::Presentations, L"Add", method, 1,
     [](const Call& call) {
         presentations.emplace_back();
         currentSlide = -1;
         call.give(Kind::Presentation);
     }},
    {Kind::Application, L"Visible", put, 1, [](const Call& call) { visible = call.number(0); }},
    {Kind::Application, L"ActivePresentation", get, 0, giving(Kind::Presentation)},
    {Kind::Presentation, L"Slides", get, 0, giving(Kind::Slides)},
    {Kind::Slides, L"Count", get, 0,
     [](const Call& call) { call.give(LONG(call.self.slides().size())); }},
    {Kind::Slides, L"Add", method, 2,
     [](const Call& call) {
         auto& slides = call.self.slides();
         const int at = call.position(0, slides.size() + 1);
         slides.insert(slides.begin() + at, {{}});
         call.give(Kind::Slide, at);
     }},
    {Kind::Slides, L"Item", method, 1,
     [](const Call& call) { call.give(Kind::Slide, call.position(0, call.self.slides().size())); }},
    {Kind::Slide, L"Select", method, 0,
     [](const Call& call) {
         if (!visible) {
             throw Refusal(L"There is no window to select in.");
         }
         currentSlide = call.self.slide();
     }},
    {Kind::Application, L"ActiveWindow", get, 0, giving(Kind::DocumentWindow)},
    {Kind::DocumentWindow, L"Selection", get, 0, giving(Kind::Selection)},
    {Kind::Selection, L"SlideRange", get, 0,
     [](const Call& call) {
         if (currentSlide < 0) {
             throw Refusal(L"Nothing is selected.");
         }
         call.give(Kind::SlideRange, currentSlide);
     }},
    {Kind::SlideRange, L"Shapes", get, 0, giving(Kind::Shapes)},
    {Kind::Shapes, L"AddTextbox", method, 5, [](const Call& call) { addShape(call, false); }},
    {Kind::Shapes, L"AddPicture", method, 7,
     [](const Call& call) {
         if (GetFileAttributesW(call.arguments[0].bstrVal) == INVALID_FILE_ATTRIBUTES) {
             throw Refusal(L"The file was not found.");
         }
         addShape(call, true);
     }},
    {Kind::Shapes, L"Item", method, 1,
     [](const Call& call) {
         call.give(Kind::Shape, call.self.slide(), call.position(0, call.self.shapes().size()));
     }},
    {Kind::Shape, L"AlternativeText", put, 1, [](const Call&) {}},
    {Kind::Shape, L"TextFrame", get, 0,
     [](const Call& call) {
         if (call.self.isPicture()) {
             throw Refusal(L"A picture holds no text.");
         }
         giving(Kind::TextFrame)(call);
     }},
    {Kind::TextFrame, L"TextRange", get, 0, giving(Kind::TextRange)},
    {Kind::TextRange, L"Text", put, 1, [](const Call&) {}},
    {Kind::Shape, L"ScaleHeight", method, 3, [](const Call&) {}},
    {Kind::Shape, L"ScaleWidth", method, 3, [](const Call&) {}},
};

std::wstring shown(const VARIANT& value)
{
    wchar_t text[64];
    switch (value.vt) {
    case VT_I2:
        swprintf(text, 64, L"I2:%d", value.iVal);
        return text;
    case VT_I4:
        swprintf(text, 64, L"I4:%ld", value.lVal);
        return text;
    case VT_R4:
        swprintf(text, 64, L"R4:%g", double(value.fltVal));
        return text;
    case VT_BSTR: {
        std::wstring line = std::wstring(L"BSTR:") + (value.bstrVal ? value.bstrVal : L"");
        for (size_t at = 0; (at = line.find(L'\r', at)) != std::wstring::npos;) {
            line.replace(at, 1, L"<CR>");
        }
        return line;
    }
    default:
        swprintf(text, 64, L"type %d", value.vt);
        return text;
    }
}

HRESULT raise(EXCEPINFO* info, const wchar_t* description)
{
    *info = {};
    info->scode = E_FAIL;
    info->bstrDescription = SysAllocString(description);
    return DISP_E_EXCEPTION;
}

STDMETHODIMP Object::Invoke(DISPID id, REFIID, LCID, WORD how, DISPPARAMS* parameters,
                            VARIANT* result, EXCEPINFO* info, UINT*)
{
    const Member& member = members[size_t(id) - 1];
    if ((member.how & how) == 0 || parameters->cArgs != member.arguments ||
        (how == put) != (parameters->cNamedArgs == 1)) {
        return DISP_E_BADPARAMCOUNT;
    }
    Call call{*this, {}, result};
    std::wstring line = how == get      ? L"get "
                        : how == put    ? L"put "
                        : how == method ? L"call "
                                        : L"item ";
    line += std::wstring(kindNames[int(kind_)]) + L'.' + member.name + L'(';
    for (UINT i = parameters->cArgs; i-- > 0;) {
        call.arguments.push_back(parameters->rgvarg[i]);
        line += shown(parameters->rgvarg[i]) + (i > 0 ? L", " : L"");
    }
    if (wcsncmp(member.name, L"Fake", 4) != 0) {
        callLog += line + L")\n";
        if (++calls == faultAt) {
            if (fault == L"fail") {
                return raise(info, L"The clipboard is on fire.");
            }
            if (fault == L"hang") {
                Sleep(4000);
            }
            if (fault == L"die") {
                // Wine would go on believing in a class whose process has just gone.
                CoRevokeClassObject(classCookie);
                TerminateProcess(GetCurrentProcess(), 1);
            }
        }
    }
    try {
        member.act(call);
        return S_OK;
    } catch (Refusal refusal) {
        return raise(info, refusal);
    }
}

class Factory final : public IClassFactory, public IMessageFilter
{
public:
    STDMETHODIMP QueryInterface(REFIID id, void** result) override
    {
        *result = id == IID_IUnknown || id == IID_IClassFactory
                      ? static_cast<void*>(static_cast<IClassFactory*>(this))
                  : id == IID_IMessageFilter ? static_cast<IMessageFilter*>(this)
                                             : nullptr;
        return *result ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown*, REFIID id, void** result) override
    {
        return (new Object(Kind::Application, -1, -1))->QueryInterface(id, result);
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }

    STDMETHODIMP_(DWORD) HandleInComingCall(DWORD, HTASK, DWORD, LPINTERFACEINFO) override
    {
        ++requests;
        const bool busy =
            fault == L"busy" && requests >= faultAt && requests < faultAt + faultCount;
        return busy ? SERVERCALL_REJECTED : SERVERCALL_ISHANDLED;
    }
    STDMETHODIMP_(DWORD) RetryRejectedCall(HTASK, DWORD, DWORD) override { return DWORD(-1); }
    STDMETHODIMP_(DWORD) MessagePending(HTASK, DWORD, DWORD) override
    {
        return PENDINGMSG_WAITDEFPROCESS;
    }
};

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    static Factory factory;
    CLSID id;
    mainThread = GetCurrentThreadId();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    IMessageFilter* none = nullptr;
    CoRegisterMessageFilter(&factory, &none);
    CLSIDFromString(fakeClassId, &id);
    CoRegisterClassObject(id, static_cast<IClassFactory*>(&factory), CLSCTX_LOCAL_SERVER,
                          REGCLS_MULTIPLEUSE, &classCookie);
    keepRunning();
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        DispatchMessageW(&message);
    }
    CoRevokeClassObject(classCookie);
    CoUninitialize();
    return 0;
}
