#pragma once

// Marks a function whose loops gain from wider registers: it is compiled twice and chosen when the program
// is loaded. Other processors and compilers get the one portable version. Sanitizers cannot instrument the
// choosing, which runs before they are set up.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__linux__) &&                 \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ZORVEX_VECTORIZE __attribute__((target_clones("avx2", "default")))
#else
#define ZORVEX_VECTORIZE
#endif
