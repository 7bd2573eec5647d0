#!/usr/bin/env bash
# The long runs, two at a time: every fuzz target for MINUTES (20) and each random model for OPERATIONS
# (1,000,000), or those named: tests/soak.sh [RUN...]. Prints what came of each; the logs are in build/soak.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
export minutes=${MINUTES:-20} BVUTIL_OPERATIONS=${OPERATIONS:-1000000}
export logs=build/soak
mkdir -p $logs

run_one() {
    name=$1 started=$SECONDS outcome=clean
    case $name in
    store-native) amount="$BVUTIL_OPERATIONS operations" command=(build/core-asan/tests/env_core_tests --gtest_filter='RandomOperations.*') ;;
    store-dll) amount="$BVUTIL_OPERATIONS operations" command=(cmake/run-wine.sh build/dll/tests/env_tests.exe --gtest_filter='RandomOperations.*') ;;
    profiles) amount="$BVUTIL_OPERATIONS operations" command=(cmake/run-wine.sh build/dll/tests/files_tests.exe --gtest_filter='RandomProfile.*') ;;
    *) amount= command=(fuzz/run.sh $((60 * minutes)) "$name") ;;
    esac
    BVUTIL_SEED=1 "${command[@]}" >"$logs/$name.log" 2>&1 || outcome="FAILED: $logs/$name.log"
    : "${amount:=$(sed -n 's/stat::number_of_executed_units: *//p' "build/fuzz/$name.log") runs}"
    printf '%-16s %24s %7s s  %s\n' "$name" "$amount" $((SECONDS - started)) "$outcome" | tee "$logs/$name.row"
    [ "$outcome" = clean ]
}
export -f run_one

rm -f $logs/*.row
if [ $# -eq 0 ]; then
    set -- store-native store-dll profiles $(sed -n 's/^bvutil_fuzz(\([a-z0-9_]*\) .*/\1/p' fuzz/CMakeLists.txt)
fi
failed=0
printf '%s\n' "$@" | xargs -P 2 -I{} bash -c 'run_one {}' >/dev/null || failed=1
echo "long runs: $minutes minutes a fuzz target, $BVUTIL_OPERATIONS operations a model"
cat $logs/*.row
exit $failed
