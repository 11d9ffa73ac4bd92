/// Threads that may join themselves, and mutexes that may be locked again.
#include "support/Threads.h"

bool pthread_current_thread_equals(pthread_t thread, pthread_t)
{
    return pthread_equal(pthread_self(), thread) != 0;
}

int pthread_join_nodeadlock_implementation(pthread_t thread, void** result)
{
    if (!pthread_current_thread_equals(thread, thread))
        return pthread_join(thread, result);
    if (result)
        *result = nullptr;
    return pthread_detach(thread);
}

int ksx_recursive_pthread_mutex_init(pthread_mutex_t* mutex)
{
    pthread_mutexattr_t attributes;
    int error = pthread_mutexattr_init(&attributes);
    if (error)
        return error;
    error = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    if (!error)
        error = pthread_mutex_init(mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return error;
}
