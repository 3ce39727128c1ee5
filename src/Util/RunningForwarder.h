#pragma once

// Who calls a functor, for functors that have no room to carry it. Private to the library.

namespace Zelkor
{
namespace Util
{

class FunctorExecutionForwarder;

/// The forwarder whose functor the calling thread runs, the innermost when a functor turns an event loop; null outside
/// of functors.
FunctorExecutionForwarder* RunningForwarder();

} // namespace Util
} // namespace Zelkor
