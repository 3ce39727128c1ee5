#include <Util/LambdaQt4.h>

#include <Base/Throw.h>

#include <QtCore/QPointer>

namespace Zelkor::Util
{

void LambdaQt4::execute()
{
    if (!functor) {
        ZELKOR_THROW(std::logic_error("LambdaQt4 use without functor!"));
    }
    functor(sender());
}

void OneTimeExecutor::executeOnce()
{
    if (running) {
        return;
    }
    running = true;
    QPointer<OneTimeExecutor> const self(this);
    try {
        execute();
    } catch (...) {
        if (self) {
            running = false;
        }
        throw;
    }
    delete self.data();
}

} // namespace Zelkor::Util
