// CPdfTestObj: the self-check of the readers.
#include "varnpdf/PdfTestObj.h"

#include <utility>
#include <vector>

#include "api/SelfCheck.h"
#include "support/Guarded.h"
#include "support/Loggers.h"

using namespace varnpdf;

struct CPdfTestObj::Results {
    struct Row {
        const char* reader;
        Judgement judgement;
        [[nodiscard]] bool isOkay() const { return judgement.failure.empty(); }
        [[nodiscard]] const char* verdict() const { return isOkay() ? "....Okay" : "....FAILED"; }
    };
    std::vector<Row> rows;

    [[nodiscard]] const Row* row(int index) const {
        return index < 0 || static_cast<std::size_t>(index) >= rows.size() ? nullptr
                                                                           : &rows[static_cast<std::size_t>(index)];
    }
};

CPdfTestObj::CPdfTestObj() : results_(std::make_unique<Results>()) {}
CPdfTestObj::~CPdfTestObj() = default;

int CPdfTestObj::RunAll() {
    results_->rows.clear();
    return guarded([this]() -> int {
        std::vector<Results::Row> rows;
        int failed = 0;
        for (const ReaderCheck& check : readerChecks()) {
            const auto& row = rows.emplace_back(Results::Row{check.reader, check.run()});
            if (row.isOkay()) {
                logDebug(loggers::test, row.reader, row.verdict());
            } else {
                ++failed;
                logError(loggers::test, row.reader, row.verdict());
            }
        }
        results_->rows = std::move(rows);
        return failed;
    });
}

int CPdfTestObj::GetReaderNum() const { return static_cast<int>(results_->rows.size()); }

const char* CPdfTestObj::GetReaderName(int index) const {
    const auto* const row = results_->row(index);
    return row == nullptr ? "" : row->reader;
}

int CPdfTestObj::GetCaseNum(int index) const {
    const auto* const row = results_->row(index);
    return row == nullptr ? 0 : row->judgement.cases;
}

int CPdfTestObj::GetOkay(int index) const {
    const auto* const row = results_->row(index);
    return row != nullptr && row->isOkay() ? 1 : 0;
}

std::string CPdfTestObj::GetLine(int index) const {
    const auto* const row = results_->row(index);
    return row == nullptr ? std::string{} : text(row->reader, row->verdict());
}

std::string CPdfTestObj::GetFailure(int index) const {
    const auto* const row = results_->row(index);
    return row == nullptr ? std::string{} : row->judgement.failure;
}
