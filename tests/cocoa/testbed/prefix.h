#pragma once

// Included in front of every source that is built for the test bed.

#ifdef __OBJC__
#include <objc/objc.h>
// As on a Mac: gcc's (id)0 does not fit error:nil, and its (BOOL)1 not @YES.
#undef nil
#undef Nil
#define nil nullptr
#define Nil nullptr
#undef YES
#undef NO
#define YES __objc_yes
#define NO __objc_no
#endif

// Qt declares its conversions from and to Apple's types where the system is theirs.
#include <QtCore/qglobal.h>
#define Q_OS_DARWIN
#include <QtCore/qstring.h>
#include <QtCore/qurl.h>
#undef Q_OS_DARWIN
