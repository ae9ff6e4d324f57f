target_sources(quelmo_core PRIVATE
  texts/Language.h texts/Language.cpp
  texts/TextKey.h
  texts/Texts.h texts/Texts.cpp
  texts/Percent.h texts/Percent.cpp
)
