#include "presentation/powerpoint/automation.h"

#include <objbase.h>

#include <algorithm>
#include <new>
#include <vector>

namespace varnholt::automation {

namespace {

using Clock = std::chrono::steady_clock;

std::wstring systemDescription(HRESULT code)
{
    wchar_t text[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, static_cast<DWORD>(code), 0, text,
                                  static_cast<DWORD>(std::size(text)), nullptr);
    while (length > 0 && text[length - 1] <= L' ') {
        --length;
    }
    if (length > 0) {
        return {text, length};
    }
    swprintf(text, std::size(text), L"error 0x%08lx", static_cast<unsigned long>(code));
    return text;
}

std::wstring taken(BSTR text)
{
    const std::wstring copy(text ? text : L"", SysStringLen(text));
    SysFreeString(text);
    return copy;
}

/// What an object said of the call it refused; `info` is used up.
Failure raised(EXCEPINFO& info)
{
    if (info.pfnDeferredFillIn) {
        info.pfnDeferredFillIn(&info);
    }
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrHelpFile);
    const HRESULT code = info.scode != 0 ? info.scode : DISP_E_EXCEPTION;
    std::wstring description = taken(info.bstrDescription);
    return {code, description.empty() ? systemDescription(code) : std::move(description)};
}

bool isRefusal(HRESULT code)
{
    return code == RPC_E_CALL_REJECTED || code == RPC_E_SERVERCALL_RETRYLATER;
}

/// The result of `call`, which is made again for as long as the other program is too busy and
/// there is patience left.
template <typename Call>
HRESULT insist(const Patience& patience, Call call)
{
    const Clock::time_point start = Clock::now();
    for (;;) {
        const HRESULT code = call();
        if (!isRefusal(code) || !patience(std::chrono::duration_cast<std::chrono::milliseconds>(
                                    Clock::now() - start))) {
            return code;
        }
    }
}

void check(HRESULT code)
{
    if (FAILED(code)) {
        throw Failure(code, systemDescription(code));
    }
}

} // namespace

bool Failure::isGone() const
{
    switch (static_cast<unsigned long>(code_)) {
    case static_cast<unsigned long>(RPC_E_DISCONNECTED):
    case static_cast<unsigned long>(RPC_E_SERVER_DIED):
    case static_cast<unsigned long>(RPC_E_SERVER_DIED_DNE):
    case static_cast<unsigned long>(CO_E_OBJNOTCONNECTED):
        return true;
    default:
        return code_ == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE) ||
               code_ == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED) ||
               code_ == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE);
    }
}

bool Failure::isBusy() const
{
    return isRefusal(code_);
}

Value::Value(std::int16_t number)
    : Value()
{
    variant_.vt = VT_I2;
    variant_.iVal = number;
}

Value::Value(std::int32_t number)
    : Value()
{
    variant_.vt = VT_I4;
    variant_.lVal = number;
}

Value::Value(float number)
    : Value()
{
    variant_.vt = VT_R4;
    variant_.fltVal = number;
}

Value::Value(const std::wstring& text)
    : Value()
{
    variant_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!variant_.bstrVal) {
        throw std::bad_alloc();
    }
    variant_.vt = VT_BSTR;
}

std::int32_t Value::number() const
{
    Value converted;
    check(VariantChangeType(converted.out(), const_cast<VARIANT*>(&variant_), 0, VT_I4));
    return converted.variant_.lVal;
}

IDispatch* Value::takeObject()
{
    if (variant_.vt != VT_DISPATCH) {
        return nullptr;
    }
    variant_.vt = VT_EMPTY;
    return variant_.pdispVal;
}

Object::Object(IDispatch* object, std::shared_ptr<const Patience> patience)
    : object_(object)
    , patience_(std::move(patience))
{}

Object::Object(Object&& other) noexcept
    : object_(std::exchange(other.object_, nullptr))
    , patience_(std::move(other.patience_))
{}

Object& Object::operator=(Object&& other) noexcept
{
    std::swap(object_, other.object_);
    std::swap(patience_, other.patience_);
    return *this;
}

Object::~Object()
{
    if (object_) {
        object_->Release();
    }
}

bool Object::isRegistered(const wchar_t* className)
{
    CLSID id;
    return SUCCEEDED(CLSIDFromProgID(className, &id));
}

Object Object::create(const wchar_t* className, Patience patience)
{
    CLSID id;
    check(CLSIDFromProgID(className, &id));
    void* object = nullptr;
    check(insist(patience, [&] {
        return CoCreateInstance(id, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, &object);
    }));
    return {static_cast<IDispatch*>(object), std::make_shared<const Patience>(std::move(patience))};
}

DISPID Object::idOf(Member& member) const
{
    if (!object_) {
        throw Failure(E_POINTER, systemDescription(E_POINTER));
    }
    if (member.id == DISPID_UNKNOWN) {
        auto* name = const_cast<wchar_t*>(member.name);
        DISPID id = DISPID_UNKNOWN;
        check(insist(*patience_, [&] {
            return object_->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
        }));
        member.id = id;
    }
    return member.id;
}

Value Object::invoke(WORD kind, Member& member, DISPPARAMS parameters) const
{
    const DISPID id = idOf(member);
    const bool hasResult = (kind & DISPATCH_PROPERTYPUT) == 0;
    Value result;
    EXCEPINFO info{};
    const HRESULT code = insist(*patience_, [&] {
        return object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                               hasResult ? result.out() : nullptr, &info, nullptr);
    });
    if (code == DISP_E_EXCEPTION) {
        throw raised(info);
    }
    check(code);
    return result;
}

Object Object::objectIn(Value value) const
{
    return {value.takeObject(), patience_};
}

Object Object::get(Member& member) const
{
    return objectIn(invoke(DISPATCH_PROPERTYGET, member, {}));
}

Object Object::get(Member& member, const Value& index) const
{
    VARIANT argument = index.variant();
    // Object models differ in whether an element is a property or what a method gives.
    return objectIn(
        invoke(DISPATCH_PROPERTYGET | DISPATCH_METHOD, member, {&argument, nullptr, 1, 0}));
}

std::int32_t Object::getNumber(Member& member) const
{
    return invoke(DISPATCH_PROPERTYGET, member, {}).number();
}

void Object::put(Member& member, const Value& value) const
{
    VARIANT argument = value.variant();
    DISPID named = DISPID_PROPERTYPUT;
    invoke(DISPATCH_PROPERTYPUT, member, {&argument, &named, 1, 1});
}

Object Object::call(Member& member, std::initializer_list<Value> arguments) const
{
    // The last argument comes first.
    std::vector<VARIANT> reversed(arguments.size());
    std::transform(arguments.begin(), arguments.end(), reversed.rbegin(),
                   [](const Value& value) { return value.variant(); });
    return objectIn(invoke(DISPATCH_METHOD, member,
                           {reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0}));
}

} // namespace varnholt::automation
