#pragma once

#include <devices/export.h>
#include <sdk/corrections/errorterms.h>
#include <vna/errorterms.h>

namespace tarn::devices {

/// The SDK's form of `terms`: the same numbers, ordered by term instead of by frequency point.
/// Nothing is scaled, sorted, left out or checked.
///
/// Threads: reentrant; at once.
///
/// An example, with the terms in the sense of R. B. Marks, "Formulations of the Basic Vector Network
/// Analyzer Error Model Including Switch-Terms", 50th ARFTG Conference Digest, 1997. Two ports at
/// 1 GHz and 2 GHz; at 2 GHz port 1, as the source, has
///
///     terms.reflection(1, 1)      = {directivity 0.01, sourceMatch 0.1, reflectionTracking 0.9}
///     terms.transmission(1, 2, 1) = {loadMatch 0.05, transmissionTracking 0.95, isolation 0.001}
///
/// The first three become `ports[0].directivity[1]` and so on; the others `portPairs[0].loadMatch[1]`
/// and so on, because the pair with source 1 and receiver 2 is the first. By the forward half of the
/// twelve-term model, with both, an ideal through (S21 = S12 = 1, S11 = S22 = 0) is measured as
///
///     S11 = 0.01 + 0.9 * 0.05 / (1 - 0.1 * 0.05) = 0.0552...
///     S21 = 0.001 + 0.95 / (1 - 0.1 * 0.05)      = 0.9557...
[[nodiscard]] TARN_DEVICES_EXPORT sdk::corrections::ErrorTerms errorTermsToSdk(const vna::ErrorTerms& terms);

} // namespace tarn::devices
