// The local model runtime's chat answer and the verdict inside it.
#include "FuzzInput.h"
#include "core/advisor/GenVerdict.h"
#include "platform/ollama/OllamaModel.h"

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray input = fuzz::bytes(data, size);
    if (const auto answer = ollama_platform::OllamaModel::answerText(input))
        (void)GenVerdict::fromJson(answer->toUtf8());
    (void)GenVerdict::fromJson(input);
    return 0;
}
