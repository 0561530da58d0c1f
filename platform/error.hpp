#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace tamo::platform {

/// The one family of raised errors: what service management reports, and the system's own "Unknown action".
/// It travels unchanged to the dispatch, which turns it into data of the outcome record.
class Error final : public std::exception {
 public:
  Error(std::string domain, std::int64_t code, std::string description)
      : domain_(std::move(domain)), code_(code), description_(std::move(description)) {}

  [[nodiscard]] const std::string& domain() const noexcept { return domain_; }
  [[nodiscard]] std::int64_t code() const noexcept { return code_; }
  /// The localized description: text for a person, private in the log.
  [[nodiscard]] const std::string& description() const noexcept { return description_; }
  [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::string domain_;
  std::int64_t code_;
  std::string description_;
};

}  // namespace tamo::platform
