# Installs the package, into a prefix or as a wheel, and runs tests/smoke.py with it.
function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(smoke ${SOURCE}/python/tests/smoke.py ${SOURCE}/examples/data)
if(KIND STREQUAL "prefix")
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK} --component python)
  run(${CMAKE_COMMAND} -E env PYTHONPATH=${WORK}/${PYTHON_DIR} ${PYTHON} ${smoke})
else()
  # Uses the module of this build, since compiling it again would take minutes.
  run(${CMAKE_COMMAND} -E env AQ_DATA_BUILD=${BUILD}
    ${PYTHON} -m pip wheel -q --no-index --no-build-isolation --no-deps -w ${WORK}
    ${SOURCE}/python)
  run(${PYTHON} -m venv --system-site-packages ${WORK}/venv)
  file(GLOB wheel ${WORK}/*.whl)
  run(${WORK}/venv/bin/pip install -q --no-index --no-deps ${wheel})
  run(${WORK}/venv/bin/python ${smoke})
endif()
