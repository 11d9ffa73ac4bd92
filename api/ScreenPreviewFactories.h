/// The factories of the newest interface revision, for calls inside the library. An exported
/// factory has a revision in its name and never changes; these two follow the newest revision.
#pragma once

#include "api/KestrixPreviewAPI.h"

/// Makes the fixed-function helper, count 1; null if allocation fails.
IKestrixGLScreenPreviewHelper* CreateOpenGLScreenPreviewHelper_Head() noexcept;

/// Makes the OpenGL 3 helper, count 1; null if allocation fails.
IKestrixGLScreenPreviewHelper* CreateOpenGL3ScreenPreviewHelper_Head() noexcept;
