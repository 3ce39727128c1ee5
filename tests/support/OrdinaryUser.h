#pragma once

#include <QtCore/QByteArray>

#include <functional>

namespace Zelkor::Testing
{

/// Runs \a work in a child process as a user without privileges (this one, when it has none), and returns its result.
/// Fails the program when the child does not end well.
QByteArray RunAsOrdinaryUser(std::function<QByteArray()> const& work);

} // namespace Zelkor::Testing
