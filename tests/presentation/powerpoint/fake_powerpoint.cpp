// An automation server with the members of PowerPoint's object model that a build uses. It counts
// the shapes of each slide, and logs every call with the types of its arguments in a file beside
// itself, ".log", which closes with "end" when all its objects have been let go. A file ".script"
// there empties the log and says what is to happen: "fail N", "die N", "hang N" (at the N-th call
// from there) or "busy N M" (the N-th and the M-1 requests after it are turned away).

#include <windows.h>

#include <oleauto.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace {

/// How many shapes each slide of the active presentation has.
std::vector<LONG> slides;
size_t currentSlide = 0;

std::wstring ownPath;
std::FILE* callLog = nullptr;
std::wstring fault;
long calls = 0;
long requests = 0;
long faultAt = 0;
long faultCount = 0;
LONG objects = 0;
DWORD classCookie = 0;
DWORD mainThread = 0;

void say(const std::wstring& line)
{
    std::fwrite((line + L'\n').data(), sizeof(wchar_t), line.size() + 1, callLog);
    std::fflush(callLog);
}

void lookForScript()
{
    const std::wstring path = ownPath + L".script";
    if (std::FILE* script = _wfopen(path.c_str(), L"r")) {
        wchar_t what[16] = L"";
        faultAt = faultCount = calls = requests = 0;
        fwscanf(script, L"%15ls %ld %ld", what, &faultAt, &faultCount);
        fault = what;
        std::fclose(script);
        DeleteFileW(path.c_str());
        callLog = _wfreopen((ownPath + L".log").c_str(), L"wb", callLog);
    }
}

[[nodiscard]] bool isFault(const wchar_t* name)
{
    return calls == faultAt && fault == name;
}

/// A call of an object, which belongs to a slide that is counted from 1.
struct Call
{
    size_t slide;
    std::vector<VARIANT> arguments = {};
    LONG number = 0; ///< what a member that gives a number leaves here

    /// The first argument.
    [[nodiscard]] size_t position(size_t upTo) const
    {
        VARIANT index{};
        VariantChangeType(&index, const_cast<VARIANT*>(arguments.data()), 0, VT_I4);
        if (index.lVal < 1 || size_t(index.lVal) > upTo) {
            throw L"Integer out of range.";
        }
        return size_t(index.lVal);
    }
    [[nodiscard]] LONG& shapes() const { return slides.at(slide - 1); }
};

constexpr WORD get = DISPATCH_PROPERTYGET;
constexpr WORD put = DISPATCH_PROPERTYPUT;
constexpr WORD method = DISPATCH_METHOD;

struct Member
{
    const wchar_t* name; ///< with its class
    WORD how;
    UINT arguments;
    std::wstring gives = {}; ///< a class, "number" or nothing
    std::function<void(Call&)> act = [](Call&) {};
};
const Member members[] = {
    {L"Application.Presentations", get, 0, L"Presentations"},
    {L"Presentations.Add", method, 1, L"Presentation", [](Call&) { slides.clear(); }},
    {L"Application.Visible", put, 1},
    {L"Application.ActivePresentation", get, 0, L"Presentation"},
    {L"Presentation.Slides", get, 0, L"Slides"},
    {L"Slides.Count", get, 0, L"number", [](Call& call) { call.number = LONG(slides.size()); }},
    {L"Slides.Add", method, 2, L"Slide",
     [](Call& call) {
         call.slide = call.position(slides.size() + 1);
         slides.insert(slides.begin() + std::ptrdiff_t(call.slide) - 1, 0);
     }},
    {L"Slides.Item", method, 1, L"Slide",
     [](Call& call) { call.slide = call.position(slides.size()); }},
    {L"Slide.Select", method, 0, {}, [](Call& call) { currentSlide = call.slide; }},
    {L"Application.ActiveWindow", get, 0, L"DocumentWindow"},
    {L"DocumentWindow.Selection", get, 0, L"Selection"},
    {L"Selection.SlideRange", get, 0, L"SlideRange", [](Call& call) { call.slide = currentSlide; }},
    {L"SlideRange.Shapes", get, 0, L"Shapes"},
    {L"Shapes.AddTextbox", method, 5, L"Shape", [](Call& call) { ++call.shapes(); }},
    {L"Shapes.AddPicture", method, 7, L"Shape", [](Call& call) { ++call.shapes(); }},
    {L"Shapes.Item", method, 1, L"Shape",
     [](Call& call) { static_cast<void>(call.position(size_t(call.shapes()))); }},
    {L"Shape.AlternativeText", put, 1},
    {L"Shape.TextFrame", get, 0, L"TextFrame"},
    {L"TextFrame.TextRange", get, 0, L"TextRange"},
    {L"TextRange.Text", put, 1},
    {L"TextRange.LanguageID", put, 1},
    {L"Presentation.BuiltInDocumentProperties", get, 0, L"DocumentProperties"},
    {L"DocumentProperties.Item", get, 1, L"DocumentProperty"},
    {L"DocumentProperty.Value", put, 1},
    {L"SlideRange.Layout", put, 1, {}, [](Call& call) { ++call.shapes(); }}, // the title
    {L"Shapes.Title", get, 0, L"Shape"},
    {L"Shape.Left", put, 1},
    {L"Shape.Top", put, 1},
    {L"Shape.Width", put, 1},
    {L"Shape.Height", put, 1},
    {L"TextRange.Font", get, 0, L"Font"},
    {L"Font.Size", put, 1},
    {L"Font.Bold", put, 1},
    {L"Shape.Fill", get, 0, L"FillFormat"},
    {L"FillFormat.Visible", put, 1},
    {L"FillFormat.ForeColor", get, 0, L"ColorFormat"},
    {L"Shape.Line", get, 0, L"LineFormat"},
    {L"LineFormat.Visible", put, 1},
    {L"LineFormat.ForeColor", get, 0, L"ColorFormat"},
    {L"LineFormat.Weight", put, 1},
    {L"ColorFormat.ObjectThemeColor", put, 1},
    {L"SlideRange.NotesPage", get, 0, L"SlideRange"},
    {L"Shapes.Placeholders", get, 0, L"Placeholders"},
    {L"Placeholders.Item", method, 1, L"Shape"},
    {L"SlideRange.SlideShowTransition", get, 0, L"SlideShowTransition"},
    {L"SlideShowTransition.AdvanceOnTime", put, 1},
    {L"SlideShowTransition.AdvanceTime", put, 1},
    {L"Shape.ScaleHeight", method, 3},
    {L"Shape.ScaleWidth", method, 3},
};

std::wstring shown(const VARIANT& value)
{
    const wchar_t* type = value.vt == VT_I2     ? L" I2:"
                          : value.vt == VT_I4   ? L" I4:"
                          : value.vt == VT_R4   ? L" R4:"
                          : value.vt == VT_BSTR ? L" BSTR:"
                                                : L" other:";
    VARIANT text{};
    VariantChangeTypeEx(&text, const_cast<VARIANT*>(&value), LOCALE_INVARIANT, 0, VT_BSTR);
    const std::wstring line = std::wstring(type) + (text.bstrVal ? text.bstrVal : L"");
    VariantClear(&text);
    return line;
}

class Object final : public IDispatch
{
public:
    Object(std::wstring kind, size_t slide)
        : kind_(std::move(kind))
        , slide_(slide)
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
        const auto* member = std::find_if(
            std::begin(members), std::end(members),
            [name = kind_ + L'.' + names[0]](const Member& m) { return m.name == name; });
        ids[0] = DISPID(member - members);
        return member != std::end(members) ? S_OK : DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD how, DISPPARAMS* given, VARIANT* result,
                        EXCEPINFO* info, UINT*) override
    {
        const Member& member = members[id];
        if ((member.how & how) == 0 || given->cArgs != member.arguments ||
            (how == put) != (given->cNamedArgs == 1)) {
            return DISP_E_BADPARAMCOUNT;
        }
        Call call{slide_};
        std::wstring line = how == get      ? L"get "
                            : how == put    ? L"put "
                            : how == method ? L"call "
                                            : L"item ";
        line += member.name;
        for (UINT i = given->cArgs; i-- > 0;) {
            call.arguments.push_back(given->rgvarg[i]);
            line += shown(given->rgvarg[i]);
        }
        say(line);
        ++calls;
        if (isFault(L"hang")) {
            Sleep(4000);
        } else if (isFault(L"die")) {
            // Wine would go on believing in a class whose process has just gone.
            CoRevokeClassObject(classCookie);
            TerminateProcess(GetCurrentProcess(), 1);
        }
        try {
            if (isFault(L"fail")) {
                throw L"The clipboard is on fire.";
            }
            member.act(call);
        } catch (const wchar_t* refusal) {
            *info = {};
            info->scode = E_FAIL;
            info->bstrDescription = SysAllocString(refusal);
            return DISP_E_EXCEPTION;
        }
        if (result && member.gives == L"number") {
            result->vt = VT_I4;
            result->lVal = call.number;
        } else if (result && !member.gives.empty()) {
            result->vt = VT_DISPATCH;
            result->pdispVal = new Object(member.gives, call.slide);
        }
        return S_OK;
    }

private:
    ULONG references_ = 1;
    std::wstring kind_;
    size_t slide_;
};

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
    STDMETHODIMP CreateInstance(IUnknown*, REFIID, void** result) override
    {
        *result = static_cast<IDispatch*>(new Object(L"Application", 0));
        return S_OK;
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }

    STDMETHODIMP_(DWORD) HandleInComingCall(DWORD, HTASK, DWORD, LPINTERFACEINFO call) override
    {
        if (call->iid != IID_IDispatch && call->iid != IID_IClassFactory) {
            return SERVERCALL_ISHANDLED; // An object is let go, which is no request.
        }
        lookForScript();
        const bool busy =
            fault == L"busy" && ++requests >= faultAt && requests < faultAt + faultCount;
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
    wchar_t path[MAX_PATH] = L"";
    CLSID id;
    IMessageFilter* none = nullptr;
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    ownPath = path;
    callLog = _wfopen((ownPath + L".log").c_str(), L"wb");
    mainThread = GetCurrentThreadId();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CoRegisterMessageFilter(&factory, &none);
    CLSIDFromString(FAKE_CLASS, &id);
    CoRegisterClassObject(id, static_cast<IClassFactory*>(&factory), CLSCTX_LOCAL_SERVER,
                          REGCLS_MULTIPLEUSE, &classCookie);
    // Whatever becomes of the test, the server must not go on for ever.
    SetTimer(nullptr, 0, 900'000, [](HWND, UINT, UINT_PTR, DWORD) { ExitProcess(1); });
    MSG message;
    // Somebody may have come while the last object went.
    while (GetMessageW(&message, nullptr, 0, 0) > 0 || objects > 0) {
        DispatchMessageW(&message);
    }
    CoRevokeClassObject(classCookie);
    CoUninitialize();
    say(L"end");
    return 0;
}
