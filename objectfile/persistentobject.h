// The base of every record that has a place of its own in a file.
#ifndef MARLUNE_OBJECTFILE_PERSISTENTOBJECT_H
#define MARLUNE_OBJECTFILE_PERSISTENTOBJECT_H

#include <queue>
#include <vector>

#include "objectfile/streams.h"

namespace ObjectFile {

/// A record that has a place of its own in the file: its line address is the zero-based number of the line at which
/// it begins, counted from the object file's first line.
class CPersistentObject {
public:
    /// Orders a priority queue so that the record with the smallest line address is on top.
    struct Less {
        bool operator()(const CPersistentObject* a, const CPersistentObject* b) const {
            return a->GetLineAddress() > b->GetLineAddress();
        }
    };
    /// The records still to be read or written; it borrows them.
    using Queue = std::priority_queue<CPersistentObject*, std::vector<CPersistentObject*>, Less>;

    virtual ~CPersistentObject() = default;
    virtual int Count() const = 0;
    virtual int GetLineAddress() const = 0;
    virtual void SetLineAddress(int lineAddress) = 0;
    /// Lines that the record occupies.
    virtual int GetLineSize() const = 0;
    /// Reads the record, which begins at the stream's next line, and queues the records it refers to.
    virtual void LoadFromStream(CInputStream& in, Queue& queue) = 0;
    /// Writes the record and queues the records it refers to.
    virtual void SaveToStream(COutputStream& out, Queue& queue) = 0;

protected:
    CPersistentObject() = default;
    CPersistentObject(const CPersistentObject&) = default;
    CPersistentObject(CPersistentObject&&) = default;
    CPersistentObject& operator=(const CPersistentObject&) = default;
    CPersistentObject& operator=(CPersistentObject&&) = default;
};

} // namespace ObjectFile

#endif
