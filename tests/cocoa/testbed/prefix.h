#pragma once

// The compiler includes this header at the beginning of every source file that is built for the test bed.

#ifdef __OBJC__
#include <objc/objc.h>
// Define these names as on macOS. GCC's header defines nil as (id)0 and YES as (BOOL)1. With GCC's definitions, the
// expressions "error:nil" and "@YES" do not compile.
#undef nil
#undef Nil
#define nil nullptr
#define Nil nullptr
#undef YES
#undef NO
#define YES __objc_yes
#define NO __objc_no
#endif

// Availability checks must use the system version that a test sets. Clang's own check for a macOS version always
// succeeds in a program that is not built for macOS.
extern "C" bool ZBSystemIsAtLeast(char const* version);
// NOLINTNEXTLINE(bugprone-reserved-identifier): this macro replaces the compiler's builtin
#define __builtin_available(version, ...) ZBSystemIsAtLeast(#version)
#ifdef __OBJC__
// These Qt headers declare functions named available(). Include them before the macro "available" is defined.
#include <QtCore/qcontiguouscache.h>
#include <QtCore/qsemaphore.h>
// "@available(...)" expands to "@encode(char)[...]". The value of @encode(char) is the string "c". Its character at
// index 0 is 'c' (true), and its character at index 1 is the terminating zero (false).
#define available(version, ...) encode(char)[ZBSystemIsAtLeast(#version) ? 0 : 1]
#endif

// Qt declares its conversions from and to Apple types only if Q_OS_DARWIN is defined.
#include <QtCore/qglobal.h>
#define Q_OS_DARWIN
#include <QtCore/qstring.h>
#include <QtCore/qurl.h>
#undef Q_OS_DARWIN
