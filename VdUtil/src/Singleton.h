#ifndef VdUtil_Singleton_h
#define VdUtil_Singleton_h

namespace VdUtil {

/// Base of every singleton: `class Foo : public Singleton<Foo>`, with a constructor that only `Singleton<Foo>`, a
/// friend, can call.
template <class T>
class Singleton {
 public:
  /// The one `T` of the process. The first call constructs it, once also when threads race to it; when the constructor
  /// throws, the next call tries again. It is destroyed at process exit, after handlers that were registered with
  /// `atexit` later than the first call.
  static T& GetInstance() {
    static T instance;
    return instance;
  }
  virtual ~Singleton() {}

 protected:
  Singleton() {}

 private:
  Singleton(const Singleton&) = delete;
  Singleton& operator=(const Singleton&) = delete;
};

}  // namespace VdUtil

#endif
