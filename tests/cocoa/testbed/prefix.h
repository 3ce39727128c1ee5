#pragma once

// Included before every source that is built for the test bed.

#ifdef __OBJC__
#include <objc/objc.h>
// Defined as on a Mac: gcc's nil, (id)0, does not match "error:nil", and its YES, (BOOL)1, does not match "@YES".
#undef nil
#undef Nil
#define nil nullptr
#define Nil nullptr
#undef YES
#undef NO
#define YES __objc_yes
#define NO __objc_no
#endif

// Availability depends on the version set by the test. For systems other than the target, clang always assumes that the
// version is available.
extern "C" bool ZBSystemIsAtLeast(char const* version);
// NOLINTNEXTLINE(bugprone-reserved-identifier): replaces the compiler builtin
#define __builtin_available(version, ...) ZBSystemIsAtLeast(#version)
#ifdef __OBJC__
// The Qt headers have functions named available(), so they must be included before the macro.
#include <QtCore/qcontiguouscache.h>
#include <QtCore/qsemaphore.h>
// "@available(...)" expands to "@encode(char)[...]": the character at index 0 is not zero, the one at index 1 is.
#define available(version, ...) encode(char)[ZBSystemIsAtLeast(#version) ? 0 : 1]
#endif

// Qt declares its conversions from and to Apple types on Apple systems only.
#include <QtCore/qglobal.h>
#define Q_OS_DARWIN
#include <QtCore/qstring.h>
#include <QtCore/qurl.h>
#undef Q_OS_DARWIN
