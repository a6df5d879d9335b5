#include "support/mutated_log.h"

QByteArray mutated_log(QByteArray bytes, std::mt19937& random)
{
    const QByteArray alphabet = "0123456789.,-+:\t\n\r eEnaifYNx\xc3\xa4";
    const auto below = [&random](int limit) {
        return int(random() % unsigned(limit));
    };
    for (int changes = 1 + below(3); changes > 0 && !bytes.isEmpty(); --changes) {
        const int at = below(bytes.size());
        switch (below(5)) {
        case 0:
            bytes[at] = alphabet[below(alphabet.size())];
            break;
        case 1:
            bytes.insert(at, alphabet[below(alphabet.size())]);
            break;
        case 2:
            bytes.remove(at, 1 + below(8));
            break;
        case 3:
            bytes.insert(at, bytes.mid(below(bytes.size()), below(60)));
            break;
        case 4: {
            const int line_end = bytes.indexOf('\n', at);
            const int next = bytes.indexOf('\n', line_end + 1);
            if (line_end >= 0 && next >= 0)
                bytes.remove(line_end, next - line_end);
            break;
        }
        }
    }
    return bytes;
}
