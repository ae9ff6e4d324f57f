target_sources(quelmo_core PRIVATE
  cleanup/CleanupCandidate.h cleanup/CleanupCandidate.cpp
  cleanup/DesktopSession.h cleanup/SystemInfo.h cleanup/ProcessSignaller.h
  cleanup/ProcessIdentity.h
  cleanup/BaselineEngine.h cleanup/BaselineEngine.cpp
  cleanup/FocusTracker.h cleanup/FocusTracker.cpp
  cleanup/ProtectedNames.h cleanup/ProtectedNames.cpp
  cleanup/CandidateSelection.h cleanup/CandidateSelection.cpp
  cleanup/Termination.h cleanup/Termination.cpp
)
