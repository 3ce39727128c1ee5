#pragma once

#include <QtCore/QByteArray>

#include <functional>

#include <sys/types.h>

namespace Zelkor::Testing
{

/// The user without privileges, and the group.
constexpr uid_t Nobody = 65534;

/// Makes this process one of that user, unless it has no privileges already. Returns whether it has none now.
bool BecomeOrdinaryUser();

/// Runs \a work in a child process as a user without privileges (this one, when it has none), and returns its result.
/// Fails the program when the child does not end well.
QByteArray RunAsOrdinaryUser(std::function<QByteArray()> const& work);

} // namespace Zelkor::Testing
