// A long list whose elements have a measure (characters, rows): finds an element by its index and by the sum of the
// measures before it, in logarithmic time.
#pragma once

#include <QtGlobal>
#include <algorithm>
#include <bit>
#include <iterator>
#include <vector>

// T has `int measure() const`, and `int peak() const` (of which largest() is the maximum). The elements lie in chunks
// of at most kChunk; a tree of partial sums stands over the chunks. Changing one element costs a walk up that tree; it
// is built anew, in the time of a walk over the chunks, when their number changes, which takes many changes.
template <typename T> class MeasuredList {
public:
    struct Found {
        int index; // of the element
        int rest; // what of the sum that was asked for lies in it
        const T &element;
    };

    [[nodiscard]] int size() const { return m_total.count; }
    [[nodiscard]] int total() const { return m_total.measure; }
    [[nodiscard]] int largest() const
    {
        int peak = 0;
        for (const Chunk &chunk : m_chunks)
            peak = std::max(peak, chunk.peak);
        return peak;
    }

    [[nodiscard]] const T &at(int index) const
    {
        const Sums before = chunkWith(index, &Sums::count);
        return m_chunks[size_t(before.chunk)].items[size_t(index - before.count)];
    }

    // The sum of the measures before an element; of everything when there is no such element.
    [[nodiscard]] int sumBefore(int index) const
    {
        if (index >= size())
            return total();
        const Sums before = chunkWith(index, &Sums::count);
        const auto &items = m_chunks[size_t(before.chunk)].items;
        int sum = before.measure;
        for (int i = 0; i < index - before.count; ++i)
            sum += items[size_t(i)].measure();
        return sum;
    }

    // The element in which the sum lies: 0 <= sum < total().
    [[nodiscard]] Found find(int sum) const
    {
        Q_ASSERT(sum >= 0 && sum < total());
        const Sums before = chunkWith(sum, &Sums::measure);
        const auto &items = m_chunks[size_t(before.chunk)].items;
        int rest = sum - before.measure;
        size_t i = 0;
        for (; rest >= items[i].measure(); ++i)
            rest -= items[i].measure();
        return {before.count + int(i), rest, items[i]};
    }

    template <typename Function> void forEach(Function &&function) const
    {
        for (const Chunk &chunk : m_chunks)
            std::for_each(chunk.items.begin(), chunk.items.end(), function);
    }
    // `function` gets each element of the range to change it; measures and sums follow.
    template <typename Function> void change(int from, int count, Function &&function)
    {
        while (count > 0) {
            const Sums before = chunkWith(from, &Sums::count);
            Chunk &chunk = m_chunks[size_t(before.chunk)];
            const int first = from - before.count;
            const int here = std::min(count, int(chunk.items.size()) - first);
            for (int i = first; i < first + here; ++i)
                function(chunk.items[size_t(i)]);
            remeasure(before.chunk);
            from += here;
            count -= here;
        }
    }
    template <typename Function> void changeAll(Function &&function)
    {
        for (Chunk &chunk : m_chunks) {
            std::for_each(chunk.items.begin(), chunk.items.end(), function);
            chunk.measureAll();
        }
        rebuild();
    }

    // `removed` elements at `index` give way to `added` ones.
    void replace(int index, int removed, std::vector<T> added)
    {
        Q_ASSERT(index >= 0 && removed >= 0 && index + removed <= size());
        if (m_chunks.empty())
            return assign(std::move(added));
        const Sums before = chunkWith(std::min(index, size() - 1), &Sums::count);
        auto &items = m_chunks[size_t(before.chunk)].items;
        const int first = index - before.count;
        const int left = int(items.size()) - removed + int(added.size());
        if (first + removed > int(items.size()) || left > kChunk || left == 0)
            return replaceChunks(before.chunk, first, removed, std::move(added));
        const int over = std::min(removed, int(added.size()));
        std::move(added.begin(), added.begin() + over, items.begin() + first);
        if (removed > over)
            items.erase(items.begin() + first + over, items.begin() + first + removed);
        else
            items.insert(items.begin() + first + over, std::make_move_iterator(added.begin() + over),
                std::make_move_iterator(added.end()));
        remeasure(before.chunk);
    }

    void assign(std::vector<T> elements)
    {
        m_chunks.clear();
        m_chunks.shrink_to_fit();
        appendChunks(m_chunks, elements);
        rebuild();
    }

private:
    static constexpr int kChunk = 64;
    static constexpr int kFill = 48; // of a new chunk: a few more elements fit before it has to be split

    struct Sums {
        int count = 0;
        int measure = 0;
        int chunk = 0; // only in answers
    };
    struct Chunk {
        std::vector<T> items;
        int measure = 0;
        int peak = 0;

        void measureAll()
        {
            measure = peak = 0;
            for (const T &item : items) {
                measure += item.measure();
                peak = std::max(peak, item.peak());
            }
        }
    };

    static void appendChunks(std::vector<Chunk> &chunks, std::vector<T> &elements)
    {
        chunks.reserve(chunks.size() + elements.size() / kFill + 1);
        for (size_t i = 0; i < elements.size(); i += kFill) {
            const auto from = elements.begin() + std::ptrdiff_t(i);
            const auto to = elements.begin() + std::ptrdiff_t(std::min(i + kFill, elements.size()));
            Chunk &chunk = chunks.emplace_back();
            chunk.items.assign(std::make_move_iterator(from), std::make_move_iterator(to));
            chunk.measureAll();
        }
    }

    // The chunk in which the sum of `what` lies, and the sums before it: down the tree.
    Sums chunkWith(int sum, int Sums::*what) const
    {
        Sums before;
        for (unsigned step = std::bit_floor(unsigned(m_chunks.size())); step > 0; step /= 2) {
            const unsigned next = unsigned(before.chunk) + step;
            if (next > m_chunks.size() || before.*what + m_tree[next].*what > sum)
                continue;
            before.count += m_tree[next].count;
            before.measure += m_tree[next].measure;
            before.chunk = int(next);
        }
        Q_ASSERT(before.chunk < int(m_chunks.size()));
        return before;
    }

    void remeasure(int index)
    {
        Chunk &chunk = m_chunks[size_t(index)];
        const int measure = chunk.measure;
        const int count = m_counts[size_t(index)];
        chunk.measureAll();
        m_counts[size_t(index)] = int(chunk.items.size());
        const Sums more{int(chunk.items.size()) - count, chunk.measure - measure};
        for (size_t i = size_t(index) + 1; i < m_tree.size(); i += i & (~i + 1)) {
            m_tree[i].count += more.count;
            m_tree[i].measure += more.measure;
        }
        m_total.count += more.count;
        m_total.measure += more.measure;
    }

    void replaceChunks(int first, int head, int removed, std::vector<T> added)
    {
        std::vector<T> elements;
        auto &front = m_chunks[size_t(first)].items;
        elements.insert(
            elements.end(), std::make_move_iterator(front.begin()), std::make_move_iterator(front.begin() + head));
        elements.insert(elements.end(), std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
        int last = first; // the chunk with what follows the removed elements
        int skip = head + removed;
        while (last < int(m_chunks.size()) && skip >= int(m_chunks[size_t(last)].items.size()))
            skip -= int(m_chunks[size_t(last++)].items.size());
        if (last < int(m_chunks.size())) {
            auto &back = m_chunks[size_t(last++)].items;
            elements.insert(
                elements.end(), std::make_move_iterator(back.begin() + skip), std::make_move_iterator(back.end()));
        }
        std::vector<Chunk> chunks;
        appendChunks(chunks, elements);
        const auto place = m_chunks.erase(m_chunks.begin() + first, m_chunks.begin() + last);
        m_chunks.insert(place, std::make_move_iterator(chunks.begin()), std::make_move_iterator(chunks.end()));
        rebuild();
    }

    void rebuild()
    {
        m_tree.assign(m_chunks.size() + 1, {});
        m_counts.resize(m_chunks.size());
        m_total = {};
        for (size_t i = 1; i < m_tree.size(); ++i) {
            const Chunk &chunk = m_chunks[i - 1];
            m_counts[i - 1] = int(chunk.items.size());
            m_tree[i].count += m_counts[i - 1];
            m_tree[i].measure += chunk.measure;
            m_total.count += m_counts[i - 1];
            m_total.measure += chunk.measure;
            if (const size_t parent = i + (i & (~i + 1)); parent < m_tree.size()) {
                m_tree[parent].count += m_tree[i].count;
                m_tree[parent].measure += m_tree[i].measure;
            }
        }
    }

    std::vector<Chunk> m_chunks;
    std::vector<int> m_counts; // of the chunks, as the tree knows them
    std::vector<Sums> m_tree; // a Fenwick tree: node i (from 1) covers the i & -i chunks that end with chunk i - 1
    Sums m_total;
};
