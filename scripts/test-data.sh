# Sourced: points ORVEX_TEST_DATA at the folder of real STEP files beside the checkout, if it is
# there and nothing else is set. Tests that need them skip with a reason otherwise.
if [ -z "${ORVEX_TEST_DATA:-}" ] && [ -d ../shared/data/step ]; then
  ORVEX_TEST_DATA=$(cd ../shared/data/step && pwd)
  export ORVEX_TEST_DATA
fi
