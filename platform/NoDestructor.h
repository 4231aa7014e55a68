// Storage for a process-wide object that is constructed on first use and
// never destroyed, so that no exit-time destructor can run while another
// thread still uses it.
#ifndef TAVURO_PLATFORM_NODESTRUCTOR_H_
#define TAVURO_PLATFORM_NODESTRUCTOR_H_

#include <new>
#include <type_traits>
#include <utility>

namespace tavuro::platform {

template <typename T>
class NoDestructor {
 public:
  template <typename... Args>
  explicit NoDestructor(Args&&... args) {
    new (&storage_) T(std::forward<Args>(args)...);
  }
  NoDestructor(const NoDestructor&) = delete;
  NoDestructor& operator=(const NoDestructor&) = delete;

  T& get() noexcept { return *std::launder(reinterpret_cast<T*>(&storage_)); }
  T* operator->() noexcept { return &get(); }
  T& operator*() noexcept { return get(); }

 private:
  alignas(T) unsigned char storage_[sizeof(T)];
};

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_NODESTRUCTOR_H_
