/// The factories of the newest interface revision, under the names by which the library itself
/// calls them. The exported ones carry a revision and stand for good; these follow the newest.
#pragma once

#include "api/KestrixPreviewAPI.h"

/// Makes the fixed-function helper, count 1; null where memory is short.
IKestrixGLScreenPreviewHelper* CreateOpenGLScreenPreviewHelper_Head() noexcept;

/// Makes the OpenGL 3 helper, count 1; null where memory is short.
IKestrixGLScreenPreviewHelper* CreateOpenGL3ScreenPreviewHelper_Head() noexcept;
