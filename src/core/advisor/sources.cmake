target_sources(quelmo_core PRIVATE
  advisor/AIVerdict.h
  advisor/AIAdvisor.h advisor/AIAdvisor.cpp
  advisor/EvaluationQueue.cpp
)
