#pragma once

// Precompiled for the sources of the add-in: the parts of the Windows interface that most of them use.
#include <windows.h>

#include <objbase.h>
#include <oleauto.h>
