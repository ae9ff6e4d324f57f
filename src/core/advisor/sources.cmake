target_sources(quelmo_core PRIVATE
  advisor/AIVerdict.h
  advisor/NoLanguageModel.h
  advisor/AdvisorTexts.h advisor/AdvisorTexts.cpp
  advisor/GenVerdict.h advisor/GenVerdict.cpp
  advisor/JsonText.h
  advisor/LanguageModel.h
  advisor/LocalRuntime.h advisor/LocalRuntime.cpp
  advisor/OllamaModel.h advisor/OllamaModel.cpp
  advisor/AIAdvisor.h advisor/AIAdvisor.cpp
  advisor/EvaluationQueue.h advisor/EvaluationQueue.cpp
)
