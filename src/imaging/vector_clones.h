// Marks a pixel loop to be compiled for several instruction sets; the best one that the processor
// has is chosen when the library is loaded. The loops stay plain code, one lane a pixel, and each
// version gives the same bits: nothing is fused and no sum is reordered.
#ifndef ORVO_IMAGING_VECTOR_CLONES_H
#define ORVO_IMAGING_VECTOR_CLONES_H

// Sanitizers cannot follow the loader's choice between versions.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ORVO_VECTOR_CLONES \
  __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define ORVO_VECTOR_CLONES
#endif

// For templates that such a loop is made of: a template cannot be cloned itself.
#if defined(__GNUC__)
#define ORVO_ALWAYS_INLINE __attribute__((always_inline)) inline
#else
#define ORVO_ALWAYS_INLINE inline
#endif

#endif  // ORVO_IMAGING_VECTOR_CLONES_H
