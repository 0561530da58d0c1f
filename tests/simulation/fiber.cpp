#include "simulation/fiber.hpp"

#include <pthread.h>
#include <utility>

#include "values/fatal.hpp"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TAMO_ADDRESS_SANITIZER
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define TAMO_ADDRESS_SANITIZER
#endif

#ifdef TAMO_ADDRESS_SANITIZER
#include <sanitizer/common_interface_defs.h>
#endif

namespace tamo::simulation {
namespace {

#ifdef TAMO_ADDRESS_SANITIZER
constexpr std::size_t stackBytes = std::size_t{1} << 20U;
#else
constexpr std::size_t stackBytes = std::size_t{1} << 17U;
#endif

void leaving([[maybe_unused]] void** fakeStack, [[maybe_unused]] const void* bottom,
             [[maybe_unused]] std::size_t size) {
#ifdef TAMO_ADDRESS_SANITIZER
  __sanitizer_start_switch_fiber(fakeStack, bottom, size);
#endif
}

void arrived([[maybe_unused]] void* fakeStack) {
#ifdef TAMO_ADDRESS_SANITIZER
  __sanitizer_finish_switch_fiber(fakeStack, nullptr, nullptr);
#endif
}

/// Which fiber a fresh stack belongs to: a context's entry takes no pointer.
thread_local Fiber* entering = nullptr;

}  // namespace

Fiber::Fiber() {
  pthread_attr_t attributes;
  void* bottom = nullptr;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) values::fatal("no attributes of a thread");
  if (pthread_attr_getstack(&attributes, &bottom, &size_) != 0) values::fatal("no stack of a thread");
  pthread_attr_destroy(&attributes);
  bottom_ = bottom;
}

Fiber::Fiber(std::function<void()> body)
    : body_(std::move(body)), stack_(new std::byte[stackBytes]), bottom_(stack_.get()), size_(stackBytes) {
  getcontext(&context_);
  context_.uc_stack.ss_sp = stack_.get();
  context_.uc_stack.ss_size = stackBytes;
  context_.uc_link = nullptr;
  makecontext(&context_, &Fiber::enter, 0);
}

void Fiber::switchTo(Fiber& next) {
  entering = &next;
  leaving(&fakeStack_, next.bottom_, next.size_);
  swapcontext(&context_, &next.context_);
  arrived(fakeStack_);
}

void Fiber::enter() {
  arrived(nullptr);
  entering->body_();
  values::fatal("the body of a fiber returned");
}

}  // namespace tamo::simulation
