#pragma once

/// \file
/// The Versions and validators page: compares and formats versions, and validates e-mail addresses and file names.

#include "Page.h"

namespace Zelkor
{
namespace Gallery
{

class ValidatorBox;
class VersionBox;

class VersionsAndValidatorsPage : public Page
{
    Q_OBJECT

public:
    explicit VersionsAndValidatorsPage(QWidget* parent = nullptr);

    void ShowSample() override;

private:
    VersionBox* versions_;
    ValidatorBox* email_;
    ValidatorBox* fileName_;
};

} // namespace Gallery
} // namespace Zelkor
