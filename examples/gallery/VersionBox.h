#pragma once

/// \file
/// A group box that parses, compares and formats versions.

#include <Base/Version.h>

#include <QtWidgets/QGroupBox>

QT_BEGIN_NAMESPACE
class QLineEdit;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;

class VersionBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit VersionBox(QWidget* parent = nullptr);

    /// Sets the text of the first line edit to \a version and the text of the second line edit to \a other.
    void ShowVersions(QString const& version, QString const& other);

private:
    void CreateLayout();
    void Update();
    QString Comparison(Core::Version const& version) const;
    QString Write(Core::Version const& version, Core::Util::VersionToStringDetail detail) const;

    QLineEdit* versionEdit_;
    QLineEdit* separatorEdit_;
    QLineEdit* otherEdit_;
    StatusLabel* componentsLabel_;
    StatusLabel* comparisonLabel_;
    StatusLabel* majorLabel_;
    StatusLabel* majorMinorLabel_;
    StatusLabel* majorMinorThirdLabel_;
    StatusLabel* fullLabel_;
    StatusLabel* visibleLabel_;
};

} // namespace Gallery
} // namespace Zelkor
