#pragma once

#include <QtCore/QStringList>

namespace Zelkor::Testing
{

/// Makes QStandardPaths::standardLocations() return fixed paths.
class StandardLocations
{
public:
    /// \a documents are the paths for DocumentsLocation, \a others are the paths for each other location.
    StandardLocations(QStringList const& others, QStringList const& documents);
    ~StandardLocations();
    StandardLocations(StandardLocations const&) = delete;
    StandardLocations& operator=(StandardLocations const&) = delete;
};

} // namespace Zelkor::Testing
