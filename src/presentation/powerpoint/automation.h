#pragma once

#include <windows.h>

#include <oleauto.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

/// Automation of another program by the names of its members (`IDispatch`), as far as a client
/// needs it. Nothing here knows which program that is. To be used on threads that have entered
/// the multi-threaded apartment, where a busy program's refusal comes back as a result.
namespace varnholt::automation {

/// A call that failed.
class Failure : public std::exception
{
public:
    /// `description` is the other program's own, or the system's for the code.
    Failure(HRESULT code, std::wstring description)
        : code_(code)
        , description_(std::move(description))
    {}

    [[nodiscard]] const char* what() const noexcept override
    {
        return "a call by automation failed";
    }
    [[nodiscard]] const std::wstring& description() const { return description_; }
    /// The other program has ended, or the object was taken away.
    [[nodiscard]] bool isGone() const;
    /// The other program kept refusing the call because it was busy.
    [[nodiscard]] bool isBusy() const;

private:
    HRESULT code_;
    std::wstring description_;
};

/// Asked each time the other program is too busy for a call, with the time it has been refusing
/// this one: waits a little and says whether to try again.
using Patience = std::function<bool(std::chrono::milliseconds refusing)>;

/// A member of one class of objects, and the number that stands for its name there, asked for
/// at the first use.
struct Member
{
    const wchar_t* name;
    DISPID id = DISPID_UNKNOWN;
};

/// A VARIANT and what it owns.
class Value
{
public:
    Value() { VariantInit(&variant_); }
    explicit Value(std::int16_t number);
    explicit Value(std::int32_t number);
    /// A length: object models declare those as single precision.
    explicit Value(float number);
    explicit Value(const std::wstring& text);
    Value(Value&& other) noexcept
        : variant_(std::exchange(other.variant_, VARIANT{}))
    {}
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { VariantClear(&variant_); }

    [[nodiscard]] const VARIANT& variant() const { return variant_; }
    [[nodiscard]] VARIANT* out() { return &variant_; }
    /// Converted as automation does it; throws `Failure` for what is no number.
    [[nodiscard]] std::int32_t number() const;
    /// The object in it, which is empty from then on; null when it holds none.
    [[nodiscard]] IDispatch* takeObject();

private:
    VARIANT variant_;
};

/// A reference to an object of the other program. All calls block and throw `Failure`, also when
/// the reference is empty.
class Object
{
public:
    Object() = default;
    Object(Object&& other) noexcept;
    Object& operator=(Object&& other) noexcept;
    ~Object();

    /// Whether a program is registered for the class.
    static bool isRegistered(const wchar_t* className);
    /// Starts the program of the class, or attaches to the running one where it allows that.
    /// `patience` holds for every object that is reached from this one.
    static Object create(const wchar_t* className, Patience patience);

    Object get(Member& member) const;
    /// An element of a collection.
    Object get(Member& member, const Value& index) const;
    std::int32_t getNumber(Member& member) const;
    void put(Member& member, const Value& value) const;
    /// A method; its object is empty when it gives none.
    Object call(Member& member, std::initializer_list<Value> arguments = {}) const;

private:
    Object(IDispatch* object, std::shared_ptr<const Patience> patience);

    [[nodiscard]] DISPID idOf(Member& member) const;
    Value invoke(WORD kind, Member& member, DISPPARAMS parameters) const;
    Object objectIn(Value value) const;

    IDispatch* object_ = nullptr;
    std::shared_ptr<const Patience> patience_;
};

} // namespace varnholt::automation
