#include "VersionsAndValidatorsPage.h"

#include "ValidatorBox.h"
#include "VersionBox.h"
#include "Widgets.h"

#include <Util/ValidatorFactory.h>

#include <QtGui/QValidator>
#include <QtWidgets/QHBoxLayout>

namespace Zelkor::Gallery
{
namespace
{

QStringList EmailSamples()
{
    return {
        QStringLiteral("ada.lovelace@example.org"),  QStringLiteral("o'neil+films@mail.example.com"),
        QStringLiteral("user@_dmarc.example.com"),   QStringLiteral("ada.lovelace@example"),
        QStringLiteral("ada..lovelace@example.org"), QStringLiteral("ada@Example.org"),
    };
}

QStringList FileNameSamples()
{
    return {
        QStringLiteral("Holidays 2024.mp4"), QStringLiteral("Übersicht (final).txt"),
        QStringLiteral(".profile"),          QString(),
        QStringLiteral(" report.pdf"),       QStringLiteral("AC/DC: Live.mp3"),
    };
}

} // namespace

VersionsAndValidatorsPage::VersionsAndValidatorsPage(QWidget* parent)
    : Page(parent)
    , versions_(new VersionBox)
    , email_(new ValidatorBox(tr("E-mail address"), tr("&Address"), Util::GetEmailValidator(nullptr), EmailSamples()))
    , fileName_(
          new ValidatorBox(tr("Name of a file"), tr("&Name"), Util::GetFilenameValidator(nullptr), FileNameSamples()))
{
    auto* const validators = new QHBoxLayout;
    validators->setSpacing(Spacing);
    validators->addWidget(email_);
    validators->addWidget(fileName_);

    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addWidget(versions_);
    column->addLayout(validators, 1);
    setFocusProxy(versions_);
}

void VersionsAndValidatorsPage::ShowSample()
{
    versions_->ShowVersions(QStringLiteral("3.1.2.405"), QStringLiteral("3.10"));
    email_->Choose(0);
    fileName_->Choose(FileNameSamples().size() - 1);
    ScheduleSampleShown();
}

} // namespace Zelkor::Gallery
