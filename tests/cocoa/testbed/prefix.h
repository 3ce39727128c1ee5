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

// What is available is decided by the version that a test has set; for another system than its own clang takes any
// version for there. The empty text at the end makes a condition of what stands behind the "@".
extern "C" bool ZBSystemIsAtLeast(char const* version);
// NOLINTNEXTLINE(bugprone-reserved-identifier): the compiler's own name
#define __builtin_available(version, ...) ZBSystemIsAtLeast(#version)
#ifdef __OBJC__
#include <QtCore/qcontiguouscache.h> // these have functions of that name
#include <QtCore/qsemaphore.h>
#define available(version, ...) encode(char)[ZBSystemIsAtLeast(#version) ? 0 : 1]
#endif

// Qt declares its conversions from and to Apple's types where the system is theirs.
#include <QtCore/qglobal.h>
#define Q_OS_DARWIN
#include <QtCore/qstring.h>
#include <QtCore/qurl.h>
#undef Q_OS_DARWIN
