// Makes exceptions in Objective-C++ functions behave as on macOS. In an Objective-C++ function, GCC's Objective-C
// runtime never catches a C++ exception. If an exception reaches a handler for a C++ type, the runtime even aborts the
// program, because it treats the C++ type as an unknown Objective-C class.
//
// A personality function selects the exception handler during stack unwinding. This file overrides the personality
// function of the Objective-C runtime. The override calls the C++ personality function in two cases:
// - The exception is a C++ exception. There are no handlers for Objective-C classes.
// - The exception is an Objective-C exception. There are handlers for C++ types, but none for Objective-C classes.
// In all other cases, the override calls the original function of the Objective-C runtime.
//
// As a result, the handlers behave as follows:
// - Handlers for C++ types, catch (...) and @catch (...) catch a C++ exception, and @finally blocks run.
// - @catch (SomeClass*) does not catch a C++ exception.
// - catch (...) catches an NSException, but handlers for C++ types do not.

#include <cstdint>
#include <cstring>
#include <typeinfo>

#include <dlfcn.h>
#include <unwind.h>

extern "C" _Unwind_Reason_Code __gxx_personality_v0(int version, _Unwind_Action actions, _Unwind_Exception_Class type,
                                                    _Unwind_Exception* exception, _Unwind_Context* context);

namespace
{

using Personality = decltype(&__gxx_personality_v0);

/// Reads the exception table (LSDA) that the compiler emits for a function.
class Reader
{
public:
    Reader(std::uint8_t const* position, _Unwind_Context* context)
        : position_(position)
        , context_(context)
    {}

    std::uint8_t const* Position() const { return position_; }

    template <class Number>
    Number Take()
    {
        Number number;
        std::memcpy(&number, position_, sizeof number);
        position_ += sizeof number;
        return number;
    }

    std::uint64_t Unsigned()
    {
        std::uint64_t number = 0;
        for (unsigned shift = 0;; shift += 7) {
            std::uint64_t const byte = Take<std::uint8_t>();
            number |= (byte & 0x7f) << shift;
            if (byte < 0x80) {
                return number;
            }
        }
    }

    std::int64_t Signed()
    {
        std::uint64_t number = 0;
        for (unsigned shift = 0;;) {
            std::uint64_t const byte = Take<std::uint8_t>();
            number |= (byte & 0x7f) << shift;
            shift += 7;
            if (byte < 0x80) {
                bool const isNegative = (byte & 0x40) != 0 && shift < 64;
                return static_cast<std::int64_t>(isNegative ? number | (~std::uint64_t{0} << shift) : number);
            }
        }
    }

    /// Reads a pointer that is stored in the DWARF encoding \a encoding.
    std::uintptr_t Pointer(std::uint8_t encoding)
    {
        auto const start = reinterpret_cast<std::uintptr_t>(position_);
        std::uintptr_t value = Value(encoding & 0x0f);
        if (value == 0) {
            return 0;
        }
        if ((encoding & 0x70) == 0x10) {
            value += start;
        } else if ((encoding & 0x70) == 0x40) {
            value += _Unwind_GetRegionStart(context_);
        }
        return (encoding & 0x80) != 0 ? *reinterpret_cast<std::uintptr_t const*>(value) : value;
    }

private:
    std::uintptr_t Value(int format)
    {
        switch (format) {
        case 0x01:
            return Unsigned();
        case 0x02:
            return Take<std::uint16_t>();
        case 0x03:
            return Take<std::uint32_t>();
        case 0x09:
            return static_cast<std::uintptr_t>(Signed());
        case 0x0a:
            return static_cast<std::uintptr_t>(std::intptr_t{Take<std::int16_t>()});
        case 0x0b:
            return static_cast<std::uintptr_t>(std::intptr_t{Take<std::int32_t>()});
        default:
            return Take<std::uint64_t>();
        }
    }

    std::uint8_t const* position_;
    _Unwind_Context* context_;
};

constexpr std::uint8_t Omitted = 0xff;

int SizeOf(std::uint8_t encoding)
{
    switch (encoding & 0x07) {
    case 0x02:
        return 2;
    case 0x03:
        return 4;
    default:
        return 8;
    }
}

struct Base
{
    virtual ~Base() = default;
};
struct Derived : Base
{};
struct Other
{
    int number;
};
struct DerivedTwice : Base, Other
{};
enum Enumeration { Enumerator };

/// Returns true if an exception handler catches a C++ type. For a C++ type, \a type is the address of a std::type_info
/// object, which starts with a vtable pointer. For an Objective-C class, \a type is the address of the class name.
bool IsCppType(std::uintptr_t type)
{
    auto const tableOf = [](std::type_info const& info) { return *reinterpret_cast<void const* const*>(&info); };
    void const* const tables[] = {
        tableOf(typeid(int)),          tableOf(typeid(Base)),        tableOf(typeid(Derived)),
        tableOf(typeid(DerivedTwice)), tableOf(typeid(int*)),        tableOf(typeid(int[3])),
        tableOf(typeid(void())),       tableOf(typeid(Enumeration)), tableOf(typeid(int Other::*))};
    void const* const first = *reinterpret_cast<void const* const*>(type);
    for (void const* const table : tables) {
        if (table == first) {
            return true;
        }
    }
    return false;
}

/// The kinds of typed exception handlers: for C++ types, for Objective-C classes, or both.
struct Handlers
{
    bool cpp = false;
    bool objectiveC = false;
};

/// Returns the kinds of exception handlers in a list of action records. Ignores catch (...). \a actions points to the
/// first record of the list in the exception table.
Handlers HandlersOf(std::uint8_t const* actions, std::uint8_t const* types, std::uint8_t typeEncoding,
                    _Unwind_Context* context)
{
    Handlers handlers;
    for (Reader action(actions, context);;) {
        std::int64_t const filter = action.Signed();
        std::uint8_t const* const here = action.Position();
        std::int64_t const next = action.Signed();
        if (filter > 0) {
            std::uintptr_t const type = Reader(types - filter * SizeOf(typeEncoding), context).Pointer(typeEncoding);
            if (type != 0) {
                (IsCppType(type) ? handlers.cpp : handlers.objectiveC) = true;
            }
        }
        if (next == 0) {
            return handlers;
        }
        action = Reader(here + next, context);
    }
}

/// Returns the kinds of exception handlers in the try blocks that surround the current call in the stack frame
/// \a context. Ignores catch (...).
Handlers HandlersAtCall(_Unwind_Context* context)
{
    auto const table = reinterpret_cast<std::uint8_t const*>(_Unwind_GetLanguageSpecificData(context));
    if (!table) {
        return {};
    }
    int isBeforeInstruction = 0;
    std::uintptr_t const instruction = _Unwind_GetIPInfo(context, &isBeforeInstruction);
    std::uintptr_t const offset = instruction - (isBeforeInstruction ? 0 : 1) - _Unwind_GetRegionStart(context);

    Reader reader(table, context);
    auto const landingEncoding = reader.Take<std::uint8_t>();
    if (landingEncoding != Omitted) {
        reader.Pointer(landingEncoding);
    }
    auto const typeEncoding = reader.Take<std::uint8_t>();
    std::uint8_t const* types = nullptr;
    if (typeEncoding != Omitted) {
        std::uint64_t const distance = reader.Unsigned();
        types = reader.Position() + distance;
    }
    auto const callEncoding = reader.Take<std::uint8_t>();
    std::uint64_t const length = reader.Unsigned();
    std::uint8_t const* const actions = reader.Position() + length;
    while (reader.Position() < actions) {
        std::uintptr_t const start = reader.Pointer(callEncoding);
        std::uintptr_t const size = reader.Pointer(callEncoding);
        std::uintptr_t const landing = reader.Pointer(callEncoding);
        std::uint64_t const action = reader.Unsigned();
        if (offset >= start && offset < start + size) {
            bool const hasHandlers = landing != 0 && action != 0 && types;
            return hasHandlers ? HandlersOf(actions + action - 1, types, typeEncoding, context) : Handlers();
        }
    }
    return {};
}

/// Returns true if \a type denotes a C++ exception. The number \a type consists of eight characters: "GNUCC++" and a
/// version byte for a C++ exception, or "GNUCOBJC" for an Objective-C exception.
bool IsCppException(_Unwind_Exception_Class type)
{
    return type >> 8 == 0x474e5543432b2b;
}

} // namespace

extern "C" __attribute__((visibility("default"))) _Unwind_Reason_Code
__gnu_objc_personality_v0(int version, _Unwind_Action actions, _Unwind_Exception_Class type,
                          _Unwind_Exception* exception, _Unwind_Context* context)
{
    static auto const next = reinterpret_cast<Personality>(dlsym(RTLD_NEXT, "__gnu_objc_personality_v0"));
    Handlers const handlers = HandlersAtCall(context);
    bool const isForCpp = IsCppException(type) ? !handlers.objectiveC : handlers.cpp && !handlers.objectiveC;
    return (isForCpp ? __gxx_personality_v0 : next)(version, actions, type, exception, context);
}
