// Commands that open each kind of dialog on its own, for the end-to-end
// tests and for looking at a dialog without the feature around it. Present
// only when the environment variable SATWALK_TEST_HOOKS is set; no menu
// names them. Each tells its outcome in an information box, which the state
// dump's `messages` shows in script mode.
//
//   49900  a small form: label 901, edit 902, check box 903 (enables 902),
//          list 904 of three entries
#pragma once

#include <memory>

#include "Features.h"

namespace satwalk::app {

class MainWindow;

inline constexpr int kTestFormCommand = 49900;

// Null unless SATWALK_TEST_HOOKS is set.
std::unique_ptr<shell::Feature> MakeTestHooks(MainWindow& window);

}  // namespace satwalk::app
