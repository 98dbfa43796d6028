#pragma once

#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "doc/forms/Form.h"

namespace gravlin {

struct Session;
struct Step;

/// A mistake in what was typed, found before the first step runs. `what` is for the user.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A step that could not do its work, so that later steps must not run. `what` is for the user.
struct StepFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// One step of a chain as it was typed.
struct StepCall {
  const Step* step = nullptr;
  const Step* subject = nullptr;  ///< the step that this one speaks of, else null
  std::vector<std::string> operands = {};
  std::vector<Setting> settings = {};
  bool anyText = false;  ///< a combo box takes a text that is none of its entries

  /// The step whose options `settings` are.
  const Step& described() const { return subject == nullptr ? *step : *subject; }
};

/// What stands behind a step that speaks of another step: nothing, that step's name, or its name
/// and its options.
enum class Subject { None, Named, WithOptions };

/// Something that a chain can do, and all that help, the man page and the command line need to know
/// about it.
struct Step {
  std::string name;                        ///< as it is typed
  std::string menu;                        ///< the heading in the help that it stands under
  std::string summary;                     ///< one line without a full stop
  std::string remark = {};                 ///< sentences below the options in its help, if any
  std::vector<std::string> operands = {};  ///< names of the words that must follow it, "FILE"
  bool hasDialog = false;                  ///< another step may speak of it
  Subject subject = Subject::None;         ///< whether it speaks of another step

  /// The options, over members of the session; null: there are none.
  std::function<Form(Session&)> form = nullptr;
  /// Looks at a call whose options have been stored in a trial session; throws UsageError.
  std::function<void(Session&, const StepCall&)> check = nullptr;
  /// Does the work. Throws StepFailure when later steps must not run.
  std::function<void(Session&, const StepCall&)> run = nullptr;
};

/// Every step: one for each row of the command table that has a handler and a step name, and those
/// that only a chain needs. The list lives as long as the program.
std::span<const Step> allSteps();

/// The option that lets a text pass which is none of a combo box's entries.
inline constexpr const char* anyTextOption = "--any-text";

/// Whether the field's text is chosen from a list and may also be typed.
bool isComboBox(const Field& field);

/// Throws UsageError, with the entries, when a combo box of the form is to be given a text that is
/// none of them, unless the call allows any text.
void checkEntries(const Form& form, const StepCall& call);

/// Types the settings into the form. Throws UsageError with the field's own sentence when one is
/// refused.
void applySettings(const Form& form, std::span<const Setting> settings);

}  // namespace gravlin
