# shellcheck shell=bash
# Sourced before tests run under the sanitizers. ROOT itself is built without them.
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
# new/delete mismatch: ROOT's TClass deletes objects by a sized delete of its own choice.
# verify_asan_link_order: PyROOT and the interpreter load our libraries into programs that are not instrumented.
export ASAN_OPTIONS="new_delete_type_mismatch=0:detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=0"
export LSAN_OPTIONS="suppressions=$here/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
