// CPdfStore: reading the document security store (ISO 32000-2 12.8.4.3).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnpdf/export.h"

class CPdf;

namespace varnpdf {
struct StoreState;
}

/// Object numbers of streams, in the order of their arrays; -1 for what leads to no object.
struct PdfStoreMaterial {
    std::vector<int> certificates;
    std::vector<int> crls;
    std::vector<int> ocsps;
};

/// An entry of /VRI.
struct PdfStoreEntry {
    std::string key;     ///< the name without slash, as UTF-8
    int signature = -1;  ///< index of the signature whose value has this SHA-1 digest, as `CPdfSignatureList` counts
    std::string time;    ///< /TU as UTF-8; "" without it
    std::shared_ptr<const PdfStoreMaterial> material;  ///< never null; shared by entries with the same dictionary
};

/// The store of an opened document. The document must not be changed while the store is in use, and outlives it.
class VARNPDF_EXPORT CPdfStore {
public:
    /// Lets std::bad_alloc out.
    explicit CPdfStore(CPdf& pdf);
    CPdfStore(const CPdfStore&) = delete;
    CPdfStore& operator=(const CPdfStore&) = delete;
    ~CPdfStore();

    /// The document has a store.
    [[nodiscard]] bool IsThere() const noexcept;
    /// Number of the store's object; -1 without one of its own.
    [[nodiscard]] int GetObjNum() const noexcept;
    [[nodiscard]] const PdfStoreMaterial& GetMaterial() const noexcept;
    [[nodiscard]] const std::vector<PdfStoreEntry>& GetEntries() const noexcept;
    /// The content of the stream with this number, its filters undone; of a damaged one what can be had. Nothing when
    /// there is none, a filter is unknown, or the document's streams would unfold beyond all measure. Lets
    /// std::bad_alloc out.
    std::optional<std::string> GetBytes(int object);

private:
    std::unique_ptr<varnpdf::StoreState> state_;
};
