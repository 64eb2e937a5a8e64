#pragma once

#include <exception>
#include <string>
#include <vector>

namespace zqxml::tool {

/// What zqmsg answers to its caller. The results 1, 4, 5 and 6 are those of eXNMsgRet.
enum ExitStatus : int {
  kDone = 0,
  kFailed = 1,             ///< XN_MSG_FAILED: what was asked for cannot be had
  kUsageError = 2,         ///< the command line is wrong
  kNotWellFormed = 4,      ///< XN_MSG_PARSE_ERROR; also JSON that is none
  kXmlLibraryError = 5,    ///< XN_MSG_XML_LIBRARY_ERROR: also what names no class
  kNoPasswordHandler = 6,  ///< XN_MSG_NO_PASSWORD_HANDLER
  kDifferent = 10,         ///< `diff` or `convert --verify` found a difference
};

/// Why a command ends: thrown where the reason is known, reported once, at the top.
class Failure : public std::exception {
 public:
  /// `where` is the file or class that it is about; empty for the command itself.
  Failure(ExitStatus status, std::string where, std::string what);

  /// What the user can do about it.
  Failure& advise(std::string advice);
  /// What the library said about it, one line each.
  Failure& explain(std::vector<std::string> lines);

  ExitStatus status() const { return status_; }
  const std::string& where() const { return where_; }
  const std::string& advice() const { return advice_; }
  const std::vector<std::string>& explanation() const { return explanation_; }
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  ExitStatus status_;
  std::string where_;
  std::string what_;
  std::string advice_;
  std::vector<std::string> explanation_;
};

/// A failure of what is written, not of an input: it ends the run, however many inputs are left.
class TargetFailure : public Failure {
 public:
  using Failure::Failure;
  explicit TargetFailure(const Failure& failure) : Failure(failure) {}
};

}  // namespace zqxml::tool
