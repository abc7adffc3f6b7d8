// perfect_curator - measures the review on recordings whose truth is known: how early errors are found, how
// often proposals are right, how good cuts are, and what is left when a curator who knows the truth has gone
// through the list. It works through the same model as a person does.
#include "error_line.h"
#include "kept_work.h"
#include "keygen.h"
#include "link_making.h"
#include "review.h"
#include "scoring.h"
#include "true_cuts.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iomanip>
#include <iostream>

namespace {

constexpr const char* usage = R"(Usage: perfect_curator FILE.roi ...
Makes units and links of recordings that have a FILE.truth, reviews them with the truth at hand and prints tables.
)";

using tries = cut_score;    // right, of
using tries_by_rule = std::array<tries, finding_rule_count>;

constexpr double parts_of_errors[] = {0.25, 0.5, 1, 2, 4};    // N, in multiples of the true errors

struct wrong_things {
    std::size_t units = 0;
    std::size_t missed = 0;       // nuclei
    std::size_t links = 0;        // wrong or missing
    std::size_t not_exact = 0;    // units that have not all ROIs of their nucleus, or others
};

struct measured {
    std::string name;
    std::size_t errors = 0;
    std::size_t findings = 0;
    std::array<double, std::size(parts_of_errors)> found{};
    std::array<double, std::size(parts_of_errors)> found_in_time{};    // in order of time
    tries_by_rule rules;
    cut_scores cuts;
    wrong_things before, after;
    int accepted = 0, dismissed = 0;
    std::size_t left = 0;
};

class curator {
public:
    explicit curator(const std::string& roi_file) : _roi_file(roi_file) {}

    // False, after one line on standard error, when a file cannot be read.
    bool open()
    {
        auto rois = std::make_unique<roidb_plus>("");
        if (!rois->read_plus(_roi_file))
            return false;
        auto known = read_truth(std::filesystem::path(_roi_file).replace_extension(".truth").string());
        if (!known)
            return false;
        _truth = std::move(*known);
        _model.open_rois(std::move(rois));
        _model.take_info(read_recording_file(recording_file_of(_roi_file)));
        for (int t = _model.min_time_point(); t <= _model.max_time_point(); ++t)
            _model.make_units(t, making());
        link_making links(_model, making());
        for (int t = _model.min_time_point() + 1; t <= _model.max_time_point(); ++t)
            links.step(t);
        return true;
    }

    measured measure()
    {
        measured m;
        m.name = std::filesystem::path(_roi_file).stem().string();
        m.cuts = score_cuts(_truth, _model.rois(), _model.info().scale);
        _review.finish();
        rank(m);
        m.before = wrong();
        go_through(m);
        m.after = wrong();
        m.left = _review.counts().open;
        return m;
    }

private:
    // As it counts: without what is marked as false, and what is set aside.
    [[nodiscard]] lineage counted() const
    {
        lineage units = _model.current_lineage();
        std::set<std::string> linked;
        for (const auto& [child, parent] : units.links)
            linked.insert({child, parent});
        std::set<std::string> out;
        for (const auto& [head, member] : units.head_members)
            if (_model.is_false(head) || (units.head_members.count(head) == 1 && !linked.contains(head)))
                out.insert(head);
        std::erase_if(units.head_members, [&](const auto& unit) { return out.contains(unit.first); });
        std::erase_if(units.links, [&](const auto& link) {
            return out.contains(link.first) || out.contains(link.second);
        });
        return units;
    }

    [[nodiscard]] std::size_t all_wrong() const { return errors_of(counted(), _truth, _model.rois()).size(); }

    [[nodiscard]] wrong_things wrong() const
    {
        wrong_things wrong;
        for (const lineage_error& e : errors_of(counted(), _truth, _model.rois())) {
            wrong.units += e.what == lineage_error::kind::unit;
            wrong.missed += e.what == lineage_error::kind::missed;
            wrong.links += e.what == lineage_error::kind::link || e.what == lineage_error::kind::missing_link;
        }
        const lineage_score s = score_lineage(counted(), _truth, _model.rois());
        wrong.not_exact = s.units.made - s.units.right;
        return wrong;
    }

    void rank(measured& m)
    {
        const auto errors = errors_of(counted(), _truth, _model.rois());
        std::vector<const finding*> findings = _review.ranked();
        m.errors = errors.size();
        m.findings = findings.size();
        m.found = shares_found(errors, findings);
        std::ranges::stable_sort(findings, {}, [](const finding* f) { return std::pair(f->t, f->unit); });
        m.found_in_time = shares_found(errors, findings);
    }

    [[nodiscard]] static std::array<double, std::size(parts_of_errors)>
    shares_found(const std::vector<lineage_error>& errors, const std::vector<const finding*>& findings)
    {
        std::array<double, std::size(parts_of_errors)> shares{};
        for (std::size_t i = 0; i < shares.size(); ++i) {
            const auto n = static_cast<std::size_t>(parts_of_errors[i] * static_cast<double>(errors.size()));
            std::set<std::string> shown;
            for (std::size_t f = 0; f < std::min(n, findings.size()); ++f) {
                shown.insert(findings[f]->unit);
                shown.insert(findings[f]->with.begin(), findings[f]->with.end());
            }
            const auto found = std::ranges::count_if(errors, [&](const lineage_error& e) {
                return std::ranges::any_of(e.units, [&](const auto& unit) { return shown.contains(unit); });
            });
            shares[i] = errors.empty() ? 1 : static_cast<double>(found) / static_cast<double>(errors.size());
        }
        return shares;
    }

    // Accepts what makes fewer errors of them, else dismisses; one key each.
    void go_through(measured& m)
    {
        std::size_t errors = all_wrong();
        while (!_review.ranked().empty()) {
            const finding f = *_review.ranked().front();
            const bool is_proposal = f.proposal != proposal_kind::none;
            tries& of_rule = m.rules[static_cast<std::size_t>(f.rule)];
            of_rule.of += is_proposal;
            if (is_proposal && _review.accept(f)) {
                const std::size_t now = all_wrong();
                if (now < errors) {
                    errors = now;
                    ++of_rule.right;
                    ++m.accepted;
                    continue;
                }
                (void)_work.undo();
            }
            _review.dismiss(f);
            ++m.dismissed;
        }
    }

    std::string _roi_file;
    curation _model;
    kept_work _work{_model};
    review _review{_model};
    truth _truth;
};

// ---- Tables

std::string percent(double share)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(0) << 100 * share;
    return text.str();
}

std::string of(int right, int all) { return std::to_string(right) + " of " + std::to_string(all); }

void print_order_row(std::ostream& out, const measured& m)
{
    out << "| " << m.name << " | " << m.errors << " | " << m.findings;
    for (std::size_t i = 0; i < m.found.size(); ++i)
        out << " | " << percent(m.found[i]) << " (" << percent(m.found_in_time[i]) << ')';
    out << " |\n";
}

void print_order(std::ostream& out, const std::vector<measured>& all)
{
    out << "| recording | errors | findings | .25 | .5 | 1 | 2 | 4 |\n|---|---|---|---|---|---|---|---|\n";
    measured sum;
    sum.name = "all";
    for (const measured& m : all) {
        sum.errors += m.errors;
        sum.findings += m.findings;
        for (std::size_t i = 0; i < m.found.size(); ++i) {
            sum.found[i] += m.found[i] * static_cast<double>(m.errors);
            sum.found_in_time[i] += m.found_in_time[i] * static_cast<double>(m.errors);
        }
        print_order_row(out, m);
    }
    for (std::size_t i = 0; sum.errors > 0 && i < sum.found.size(); ++i) {
        sum.found[i] /= static_cast<double>(sum.errors);
        sum.found_in_time[i] /= static_cast<double>(sum.errors);
    }
    print_order_row(out, sum);
}

void print_rules(std::ostream& out, const std::vector<measured>& all)
{
    out << "| finding | proposal | right here | share in the program |\n|---|---|---|---|\n";
    for (std::size_t rule = 0; rule < finding_rule_count; ++rule) {
        tries sum;
        for (const measured& m : all) {
            sum.right += m.rules[rule].right;
            sum.of += m.rules[rule].of;
        }
        const rule_record& record = record_of(static_cast<finding_rule>(rule));
        finding f;
        f.kind = record.kind;
        f.rule = static_cast<finding_rule>(rule);
        if (sum.of > 0)
            out << "| " << reason_of(f) << " | " << word_of(record.proposal) << " | " << of(sum.right, sum.of)
                << " | " << percent(record.score()) << " % |\n";
    }
}

void print_cuts(std::ostream& out, const std::vector<measured>& all)
{
    constexpr cut_score cut_scores::*columns[] = {&cut_scores::joined_known, &cut_scores::stacked_known,
                                                  &cut_scores::joined, &cut_scores::stacked};
    out << "| recording | joined, parents known | stacked, parents known | joined | stacked "
           "|\n|---|---|---|---|---|\n";
    cut_scores sum;
    for (const measured& m : all) {
        out << "| " << m.name;
        for (const auto column : columns) {
            const cut_score& score = m.cuts.*column;
            (sum.*column).right += score.right;
            (sum.*column).of += score.of;
            out << " | " << of(score.right, score.of);
        }
        out << " |\n";
    }
    out << "| all, per cent";
    for (const auto column : columns)
        out << " | " << percent((sum.*column).of > 0 ? double((sum.*column).right) / (sum.*column).of : 1);
    out << " |\n";
}

constexpr std::size_t wrong_things::*wrong_columns[] = {&wrong_things::units, &wrong_things::not_exact,
                                                        &wrong_things::missed, &wrong_things::links};

void print_curator_row(std::ostream& out, const measured& m)
{
    out << "| " << m.name;
    for (const auto column : wrong_columns)
        out << " | " << m.before.*column << " -> " << m.after.*column;
    out << " | " << m.accepted << " | " << m.dismissed << " | ";
    if (m.accepted > 0)
        out << std::fixed << std::setprecision(1) << double(m.accepted + m.dismissed) / m.accepted;
    out << " | " << m.left << " |\n";
}

void print_curator(std::ostream& out, const std::vector<measured>& all)
{
    out << "| recording | wrong units | not exact | missed nuclei | link errors | accepted | dismissed | "
           "keys a "
           "repair | left |\n|---|---|---|---|---|---|---|---|---|\n";
    measured sum;
    sum.name = "all";
    for (const measured& m : all) {
        for (const auto column : wrong_columns) {
            sum.before.*column += m.before.*column;
            sum.after.*column += m.after.*column;
        }
        sum.accepted += m.accepted;
        sum.dismissed += m.dismissed;
        sum.left += m.left;
        print_curator_row(out, m);
    }
    print_curator_row(out, sum);
}

}    // namespace

int main(int argc, char** argv)
{
    constexpr int wrong_use = 2;
    std::ostream out(std::cout.rdbuf());
    if (argc < 2 || std::string(argv[1]).starts_with("-")) {
        out << usage;
        return argc < 2 ? wrong_use : EXIT_SUCCESS;
    }
    std::cout.rdbuf(nullptr);    // what the operations tell of themselves
    std::vector<measured> all;
    for (int i = 1; i < argc; ++i) {
        curator c(argv[i]);
        if (!c.open())
            return wrong_use;
        all.push_back(c.measure());
    }
    using print = void(std::ostream&, const std::vector<measured>&);
    for (print* const table : {print_order, print_rules, print_cuts, print_curator}) {
        table(out, all);
        out << '\n';
    }
    return out.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
