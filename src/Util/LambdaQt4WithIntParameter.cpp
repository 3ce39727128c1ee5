#include <Util/LambdaQt4WithIntParameter.h>

#include <Base/Throw.h>

namespace Zelkor::Util
{

void LambdaQt4WithIntParameter::execute(int inputParam)
{
    if (!functor_) {
        ZELKOR_THROW(std::logic_error("LambdaQt4WithIntParameter use without functor!"));
    }
    functor_(sender(), inputParam);
}

} // namespace Zelkor::Util
