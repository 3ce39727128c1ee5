#include "VersionBox.h"

#include "StatusLabel.h"
#include "Widgets.h"

#include <Util/VersionUtils.h>

#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>

namespace Zelkor::Gallery
{
namespace
{

constexpr int SeparatorWidth = 50;

QString ComponentText(std::uint32_t component)
{
    return component == Core::Version::NotGiven ? VersionBox::tr("not given") : QString::number(component);
}

QString ComponentsText(Core::Version const& version)
{
    return VersionBox::tr("major %1, minor %2, third %3, build %4")
        .arg(ComponentText(version.GetMajor()), ComponentText(version.GetMinor()), ComponentText(version.GetThird()),
             ComponentText(version.GetBuild()));
}

} // namespace

VersionBox::VersionBox(QWidget* parent)
    : QGroupBox(tr("Versions"), parent)
    , versionEdit_(new QLineEdit(QStringLiteral("3.1.2.405")))
    , separatorEdit_(new QLineEdit(QStringLiteral(".")))
    , otherEdit_(new QLineEdit(QStringLiteral("3.10")))
{
    separatorEdit_->setFixedWidth(SeparatorWidth);
    CreateLayout();
    for (QLineEdit* const edit : {versionEdit_, separatorEdit_, otherEdit_}) {
        connect(edit, &QLineEdit::textChanged, this, &VersionBox::Update);
    }
    setFocusProxy(versionEdit_);
    Update();
}

void VersionBox::CreateLayout()
{
    auto* const edits = new QHBoxLayout;
    edits->addWidget(NewLabelFor(versionEdit_, tr("&Version")));
    edits->addWidget(versionEdit_, 1);
    edits->addWidget(NewLabelFor(separatorEdit_, tr("&Separator")));
    edits->addWidget(separatorEdit_);
    edits->addWidget(NewLabelFor(otherEdit_, tr("&Compare with")));
    edits->addWidget(otherEdit_, 1);

    auto* const form = new QFormLayout;
    componentsLabel_ = AddValueRow(form, tr("Components"));
    comparisonLabel_ = AddValueRow(form, tr("Comparison"));
    visibleLabel_ = AddValueRow(form, tr("Visible version"));
    auto* const details = new QFormLayout;
    majorLabel_ = AddValueRow(details, tr("Major"));
    majorMinorLabel_ = AddValueRow(details, tr("MajorMinor"));
    majorMinorThirdLabel_ = AddValueRow(details, tr("MajorMinorThird"));
    fullLabel_ = AddValueRow(details, tr("Full"));
    auto* const values = new QHBoxLayout;
    values->addLayout(form, 3);
    values->addSpacing(Spacing);
    values->addLayout(details, 2);

    auto* const column = new QVBoxLayout(this);
    column->setSpacing(Spacing);
    column->addLayout(edits);
    column->addLayout(values);
}

void VersionBox::ShowVersions(QString const& version, QString const& other)
{
    versionEdit_->setText(version);
    otherEdit_->setText(other);
}

void VersionBox::Update()
{
    using Detail = Core::Util::VersionToStringDetail;
    Core::Version const version = Util::VersionFromString(versionEdit_->text(), separatorEdit_->text());
    componentsLabel_->Show(ComponentsText(version));
    comparisonLabel_->Show(Comparison(version));
    visibleLabel_->Show(Util::GenerateApplicationVisibleVersion(version));
    majorLabel_->Show(Write(version, Detail::Major));
    majorMinorLabel_->Show(Write(version, Detail::MajorMinor));
    majorMinorThirdLabel_->Show(Write(version, Detail::MajorMinorThird));
    fullLabel_->Show(Write(version, Detail::Full));
}

QString VersionBox::Comparison(Core::Version const& version) const
{
    using Detail = Core::Util::VersionToStringDetail;
    Core::Version const other = Util::VersionFromString(otherEdit_->text(), separatorEdit_->text());
    if (version == other) {
        return tr("the same as %1").arg(Write(other, Detail::Full));
    }
    return (version < other ? tr("older than %1") : tr("newer than %1")).arg(Write(other, Detail::Full));
}

QString VersionBox::Write(Core::Version const& version, Core::Util::VersionToStringDetail detail) const
{
    return Util::VersionToString(version, detail, separatorEdit_->text());
}

} // namespace Zelkor::Gallery
