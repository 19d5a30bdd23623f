#pragma once

#include <mutex>

/// Clang's thread-safety annotations; they vanish under other compilers.
#if defined(__clang__)
#define ORVAN_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define ORVAN_THREAD_ANNOTATION(attribute)
#endif
#define ORVAN_GUARDED_BY(mutex) ORVAN_THREAD_ANNOTATION(guarded_by(mutex))
#define ORVAN_REQUIRES(...) ORVAN_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define ORVAN_EXCLUDES(...) ORVAN_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

namespace orvan {

/// std::mutex with the annotations that let the compiler check which fields it guards.
class ORVAN_THREAD_ANNOTATION(capability("mutex")) Mutex {
 public:
  void lock() ORVAN_THREAD_ANNOTATION(acquire_capability()) { mutex_.lock(); }
  void unlock() ORVAN_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

/// Holds a Mutex for a scope.
class ORVAN_THREAD_ANNOTATION(scoped_lockable) MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) ORVAN_THREAD_ANNOTATION(acquire_capability(mutex)) : mutex_(mutex) { mutex_.lock(); }
  ~MutexLock() ORVAN_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

} // namespace orvan
