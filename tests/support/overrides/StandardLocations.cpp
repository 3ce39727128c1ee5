// Replaces QStandardPaths::standardLocations(), because no configuration of the system makes Qt's function return empty
// paths or an empty list.

#include <support/overrides/StandardLocations.h>

#include <support/overrides/NextFunction.h>

#include <QtCore/QStandardPaths>

#include <optional>

namespace Zelkor::Testing
{
namespace
{

struct Locations
{
    QStringList others;
    QStringList documents;
};

std::optional<Locations>& Fixed()
{
    static std::optional<Locations> locations;
    return locations;
}

} // namespace

StandardLocations::StandardLocations(QStringList const& others, QStringList const& documents)
{
    Fixed() = {others, documents};
}

StandardLocations::~StandardLocations()
{
    Fixed().reset();
}

} // namespace Zelkor::Testing

QStringList QStandardPaths::standardLocations(StandardLocation type)
{
    using namespace Zelkor::Testing;
    static auto const next = NextFunction<QStringList (*)(StandardLocation)>(
        "_ZN14QStandardPaths17standardLocationsENS_16StandardLocationE");
    if (!Fixed()) {
        return next(type);
    }
    return type == DocumentsLocation ? Fixed()->documents : Fixed()->others;
}
