#include "simulation/timeline.hpp"

#include <algorithm>
#include <utility>

namespace tamo::simulation {

void Timeline::begin(Dice& dice) {
  dice_ = &dice;
  now_ = Time(0);
  events_.clear();
}

bool Timeline::later(const Event& left, const Event& right) {
  return left.at != right.at ? left.at > right.at : left.order > right.order;
}

void Timeline::push(Event event) {
  events_.push_back(std::move(event));
  std::push_heap(events_.begin(), events_.end(), later);
}

Timeline::Event Timeline::pop() {
  std::pop_heap(events_.begin(), events_.end(), later);
  Event event = std::move(events_.back());
  events_.pop_back();
  return event;
}

void Timeline::after(Time delay, std::function<void()> work) {
  push({.at = now_ + delay, .order = dice_->next(), .work = std::move(work), .strand = nullptr, .wait = 0});
}

Strand& Timeline::start(std::function<void()> work) {
  auto& strand = idleStrand();
  strand.work_ = std::move(work);
  strand.busy_ = true;
  wake(strand);
  return strand;
}

Strand& Timeline::idleStrand() {
  for (const auto& strand : strands_) {
    if (!strand->busy_) return *strand;
  }
  auto& fresh = *strands_.emplace_back(std::make_unique<Strand>());
  fresh.fiber_ = std::make_unique<Fiber>([this, &fresh] { strandLoop(fresh); });
  return fresh;
}

void Timeline::strandLoop(Strand& strand) {
  for (;;) {
    strand.work_();
    strand.work_ = nullptr;
    strand.busy_ = false;
    ++strand.wait_;
    strand.fiber_->switchTo(*root_);
  }
}

/// Nobody else has anything to do before this strand goes on: the usual case, and then no switch is needed.
void Timeline::sleep(Time duration) {
  const auto until = now_ + duration;
  if (left_ > 0 && (events_.empty() || events_.front().at > until)) {
    --left_;
    now_ = until;
    return;
  }
  auto& self = *current_;
  push({.at = until, .order = dice_->next(), .work = nullptr, .strand = &self, .wait = self.wait_});
  suspend(self);
}

void Timeline::park() {
  suspend(*current_);
}

void Timeline::wake(Strand& strand) {
  push({.at = now_, .order = dice_->next(), .work = nullptr, .strand = &strand, .wait = strand.wait_});
}

Strand* Timeline::nextStrand() {
  current_ = nullptr;
  while (!events_.empty() && left_ > 0) {
    --left_;
    const auto event = pop();
    now_ = event.at;
    if (event.strand == nullptr) {
      event.work();
    } else if (event.wait == event.strand->wait_) {
      ++event.strand->wait_;
      return event.strand;
    }
  }
  return nullptr;
}

void Timeline::suspend(Strand& self) {
  auto* next = nextStrand();
  if (next != &self) self.fiber_->switchTo(next == nullptr ? *root_ : (current_ = next, *next->fiber_));
  current_ = &self;
}

bool Timeline::runUntilIdle(std::uint64_t most) {
  left_ = most;
  while (auto* next = nextStrand()) {
    current_ = next;
    root_->switchTo(*next->fiber_);
  }
  return events_.empty();
}

}  // namespace tamo::simulation
