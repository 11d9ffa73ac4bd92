/// What POSIX threads lack.
///
/// Reentrant. Results are those of the POSIX functions: 0 or an error number.
#pragma once

#include <pthread.h>

/// Whether `thread` is the calling one. The second id is not used.
bool pthread_current_thread_equals(pthread_t thread, pthread_t);

/// Waits for `thread` to end and stores what it returned in `result`, unless that is null.
///
/// A thread that would wait for itself is detached instead, null stored: its resources are freed
/// when it ends, and no one can join it any more.
int pthread_join_nodeadlock_implementation(pthread_t thread, void** result);

/// Makes `mutex`, not yet initialised, one that a thread can lock again while it holds it.
int ksx_recursive_pthread_mutex_init(pthread_mutex_t* mutex);
