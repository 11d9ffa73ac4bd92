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

# The flags of Debian that make faults in what is installed harder to use. The engine has only
# -fcf-protection, which adds an instruction at the entry of a function: it keeps its rows on the stack, and
# would check them for each row.
add_library(kestrix_hardening INTERFACE)
if(NOT KESTRIX_SANITIZE)
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  target_compile_options(kestrix_hardening INTERFACE -fcf-protection -fstack-protector-strong
    -Wformat-security $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=2>)
endif()
target_link_options(kestrix_hardening INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)

# The flags of the library: floating point as written (a fused multiply-add would change a bit), no symbol
# visible by default, and the instructions of one kind of processor.
add_library(kestrix_engine_flags INTERFACE)
target_compile_options(kestrix_engine_flags INTERFACE
  -ffp-contract=off -fcf-protection -fvisibility=hidden -fvisibility-inlines-hidden
  $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
if(NOT KESTRIX_LEVEL)
  # The x86-64 baseline and SSSE3 without later instructions.
  target_compile_options(kestrix_engine_flags INTERFACE -mssse3)
elseif(KESTRIX_LEVEL STREQUAL "v3")
  target_compile_options(kestrix_engine_flags INTERFACE -march=x86-64-v3)
  target_compile_definitions(kestrix_engine_flags INTERFACE KSX_VECTOR_BYTES=32)
elseif(KESTRIX_LEVEL STREQUAL "v4")
  # g++ 12 warns of the undefined vectors in its own headers.
  target_compile_options(kestrix_engine_flags INTERFACE -march=x86-64-v4
    $<$<CXX_COMPILER_ID:GNU>:-Wno-uninitialized -Wno-maybe-uninitialized>)
  target_compile_definitions(kestrix_engine_flags INTERFACE KSX_VECTOR_BYTES=64)
else()
  message(FATAL_ERROR "KESTRIX_LEVEL is empty, v3 or v4, not \"${KESTRIX_LEVEL}\"")
endif()
