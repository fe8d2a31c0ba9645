#include "gps/SentenceLines.h"

#include "base/Text.h"

namespace zenka::gps {

void SentenceLines::feed(std::string_view bytes, const Take& take) {
    for (const char byte : bytes) {
        if (byte == '\n') {
            take(base::trimmed(line_));
            line_.clear();
        } else if (byte != '\r') {
            line_ += byte;
            if (line_.size() > longest)
                line_.clear();
        }
    }
}

} // namespace zenka::gps
