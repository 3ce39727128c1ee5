#pragma once

#include <QtCore/QStringList>

namespace Zelkor::Testing
{

/// Makes QStandardPaths::standardLocations() return fixed paths. After the destruction of this object,
/// standardLocations() returns the real paths again.
class StandardLocations
{
public:
    /// \param others     The paths returned for every location except DocumentsLocation.
    /// \param documents  The paths returned for DocumentsLocation.
    StandardLocations(QStringList const& others, QStringList const& documents);
    ~StandardLocations();
    StandardLocations(StandardLocations const&) = delete;
    StandardLocations& operator=(StandardLocations const&) = delete;
};

} // namespace Zelkor::Testing
