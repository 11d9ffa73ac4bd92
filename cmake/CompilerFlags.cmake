# Flags of this project's own targets. They are interface libraries, so they leave a parent project's
# flags unchanged.

# The flags of all targets.
add_library(kestrix_flags INTERFACE)
target_compile_features(kestrix_flags INTERFACE cxx_std_20)
# No -Wnon-virtual-dtor: the interfaces have no public destructor, as in COM, and nothing deletes a stage
# through its base.
target_compile_options(kestrix_flags INTERFACE -Wall -Wextra -Wshadow -Wvla -Wmissing-declarations)
if(KESTRIX_WERROR)
  target_compile_options(kestrix_flags INTERFACE -Werror)
endif()
if(KESTRIX_SANITIZE)
  target_compile_options(kestrix_flags INTERFACE
    -fsanitize=${KESTRIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kestrix_flags INTERFACE -fsanitize=${KESTRIX_SANITIZE})
  # The engine keeps its functions separate, so that each one is compiled and checked once.
  target_compile_definitions(kestrix_flags INTERFACE KSX_KEEP_FUNCTIONS)
endif()

# The flags of the library: the x86-64 baseline and SSSE3 without later instructions, floating point as
# written (a fused multiply-add would change a bit), and no symbol visible by default.
add_library(kestrix_engine_flags INTERFACE)
target_compile_options(kestrix_engine_flags INTERFACE
  -mssse3 -ffp-contract=off -fvisibility=hidden -fvisibility-inlines-hidden
  $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
