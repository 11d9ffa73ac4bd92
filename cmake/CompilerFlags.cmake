# Flags of this project's own targets, as interface libraries so that a parent project's flags are
# left alone.

# What everything is compiled with.
add_library(kestrix_flags INTERFACE)
target_compile_features(kestrix_flags INTERFACE cxx_std_20)
# Interfaces in the COM manner have no public destructor, and stages are polymorphic only by an
# operation that nothing calls through a base, hence no -Wnon-virtual-dtor.
target_compile_options(kestrix_flags INTERFACE -Wall -Wextra -Wshadow -Wvla -Wmissing-declarations)
if(KESTRIX_WERROR)
  target_compile_options(kestrix_flags INTERFACE -Werror)
endif()
if(KESTRIX_SANITIZE)
  target_compile_options(kestrix_flags INTERFACE
    -fsanitize=${KESTRIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kestrix_flags INTERFACE -fsanitize=${KESTRIX_SANITIZE})
  # The engine keeps its functions apart, so that each is compiled and checked once.
  target_compile_definitions(kestrix_flags INTERFACE KSX_KEEP_FUNCTIONS)
endif()

# What the library is compiled with: the x86-64 baseline and SSSE3, no instruction more, floating
# point as written (a fused multiply-add would change a bit), and nothing visible by default.
add_library(kestrix_engine_flags INTERFACE)
target_compile_options(kestrix_engine_flags INTERFACE
  -mssse3 -ffp-contract=off -fvisibility=hidden -fvisibility-inlines-hidden
  $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
