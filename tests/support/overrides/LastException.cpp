// Replaces __cxa_throw() to record all exceptions. Without this record, a test could not observe an exception that the
// library itself catches.

#include <support/overrides/LastException.h>

#include <support/overrides/NextFunction.h>

#include <QtCore/QtGlobal>

#include <boost/core/demangle.hpp>

#include <exception>
#include <typeinfo>

namespace Zelkor::Testing
{

LastException& GetLastException()
{
    static thread_local LastException exception;
    return exception;
}

} // namespace Zelkor::Testing

// The compiler has a built-in declaration of __cxa_throw() with different parameter types. Therefore, the replacement
// has another name in C++, and only its linker symbol is __cxa_throw.
[[noreturn]] Q_DECL_EXPORT void RecordAndThrow(void* object, std::type_info* type,
                                               void (*destroy)(void*)) __asm__("__cxa_throw");

void RecordAndThrow(void* object, std::type_info* type, void (*destroy)(void*))
{
    using namespace Zelkor::Testing;
    static auto const next = NextFunction<void (*)(void*, std::type_info*, void (*)(void*))>("__cxa_throw");
    void* base = object;
    bool const isException = typeid(std::exception).__do_catch(type, &base, 1);
    GetLastException() = {QByteArray::fromStdString(boost::core::demangle(type->name())),
                          isException ? static_cast<std::exception*>(base)->what() : "not a std::exception"};
    next(object, type, destroy);
    std::terminate();
}
