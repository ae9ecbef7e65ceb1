// Commands that open each kind of dialog on its own, for the end-to-end
// tests and for looking at a dialog without the feature around it. Present
// only when the environment variable SATWALK_TEST_HOOKS is set; no menu
// names them. Each tells its outcome in an information box, which the state
// dump's `messages` shows in script mode.
//
//   49900  a small form: label 901, edit 902, check box 903 (enables 902),
//          list 904 of three entries
//   49901..49903  the file browser in mode 1..3; tells "chosen PATH"
//   49910..49914  the reference-point dialog on slot 1..5, which holds
//          -33.5, 151.25 (active) in slot 1 and nothing in the others, with
//          the receiver's fix; tells the slot that OK would store
#pragma once

#include <memory>

#include "Features.h"

namespace satwalk::app {

class MainWindow;

inline constexpr int kTestFormCommand = 49900;
inline constexpr int kTestBrowserCommand = 49901;    // to 49903
inline constexpr int kTestReferenceCommand = 49910;  // to 49914

// Null unless SATWALK_TEST_HOOKS is set.
std::unique_ptr<shell::Feature> MakeTestHooks(MainWindow& window);

}  // namespace satwalk::app
