target_sources(quelmo_core PRIVATE
  advisor/AIVerdict.h
  advisor/NoLanguageModel.h
  advisor/AdvisorTexts.h advisor/AdvisorTexts.cpp
  advisor/GenVerdict.h advisor/GenVerdict.cpp
  advisor/JsonText.h
  advisor/LanguageModel.h
  advisor/LoopbackEndpoint.h advisor/LoopbackEndpoint.cpp
  advisor/AIAdvisor.h advisor/AIAdvisor.cpp
  advisor/EvaluationQueue.h advisor/EvaluationQueue.cpp
)
