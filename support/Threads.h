/// Additions to POSIX threads.
///
/// Reentrant. Results are those of the POSIX functions: 0 or an error number.
#pragma once

#include <pthread.h>

/// Whether `thread` is the calling one. The second id is not used.
bool pthread_current_thread_equals(pthread_t thread, pthread_t);

/// Waits until `thread` ends, and stores its return value in `result`, unless `result` is null.
///
/// If `thread` is the calling thread, detaches it instead and stores null: its resources are freed
/// when it ends, and no thread can join it any more.
int pthread_join_nodeadlock_implementation(pthread_t thread, void** result);

/// Initialises `mutex` as a recursive one: the thread that has locked it can lock it again.
int ksx_recursive_pthread_mutex_init(pthread_mutex_t* mutex);
