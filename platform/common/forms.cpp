#include "platform/forms.h"

namespace zv {
namespace {

void addBlocks(const std::vector<FormBlock>& blocks, std::vector<const FormCell*>& out) {
    for (const FormBlock& block : blocks) {
        for (const FormCard& card : block) {
            for (const FormRow& row : card.rows) {
                for (const FormCell& cell : row.cells) out.push_back(&cell);
            }
        }
    }
}

}  // namespace

std::vector<const FormCell*> cellsOf(const Form& form) {
    std::vector<const FormCell*> out;
    addBlocks(form.blocks, out);
    for (const FormPage& page : form.pages) addBlocks(page.blocks, out);
    for (const auto* keys : {&form.keysLeft, &form.keys}) {
        for (const FormCell& cell : *keys) out.push_back(&cell);
    }
    return out;
}

}  // namespace zv
