# Copies the shipped data and the readme into the game directory.
# Run with -DSOURCE=<repository> -DGAME=<game directory>.
if(EXISTS ${SOURCE}/data)
  file(COPY ${SOURCE}/data DESTINATION ${GAME})
endif()
if(EXISTS ${SOURCE}/Tumblekin.txt)
  file(COPY ${SOURCE}/Tumblekin.txt DESTINATION ${GAME})
endif()
