package com.tavuro.common;

import java.io.Serializable;
import java.util.AbstractMap;
import java.util.AbstractSet;
import java.util.Arrays;
import java.util.ConcurrentModificationException;
import java.util.Iterator;
import java.util.Map;
import java.util.NoSuchElementException;
import java.util.Objects;
import java.util.Set;

/**
 * The map that a JSON object becomes: ordered by insertion like a {@code LinkedHashMap}, and
 * mutable in every way a {@code Map} is, but kept as one array of keys and values side by side
 * instead of one entry object per key. Up to eight keys are found by looking at each; beyond that
 * through an open-addressed index of entry numbers, built by the first lookup that needs it. Null
 * keys and values are allowed.
 *
 * <p>Costs: {@code get}, {@code containsKey} and {@code put} take constant time (linear up to eight
 * keys); {@code remove} moves the later entries up and drops the index, so it takes time in
 * proportion to the size. Several threads may read at once, a lookup that builds the index
 * included; like {@code HashMap} it is not safe when any of them writes. Iterators fail fast on a
 * change made other than through them.
 */
final class JsonMap extends AbstractMap<String, Object> implements Serializable {
  private static final long serialVersionUID = 1L;

  /** Above this many keys, lookups go through the index. */
  private static final int LINEAR_MAX = 8;

  /** Key {@code i} at {@code 2 * i}, its value at {@code 2 * i + 1}, in insertion order. */
  private Object[] entries;
  private int size;
  /**
   * By hash, 1 + the number of the entry; 0 for a free slot. Null up to LINEAR_MAX keys, and until
   * a lookup needs it. Volatile, so that a reader that finds an index built by another reader also
   * sees its slots.
   */
  private transient volatile int[] index;
  private transient int modCount;

  /** A map of the first {@code size} keys and values in {@code entries}, which it keeps. */
  JsonMap(Object[] entries, int size) {
    this.entries = entries;
    this.size = size;
  }

  @Override
  public int size() {
    return size;
  }

  @Override
  public boolean containsKey(@Nullable Object key) {
    return find(key) >= 0;
  }

  @Override
  @Nullable
  public Object get(@Nullable Object key) {
    int i = find(key);
    return i < 0 ? null : entries[2 * i + 1];
  }

  @Override
  @Nullable
  public Object put(@Nullable String key, @Nullable Object value) {
    int i = find(key);
    if (i >= 0) {
      Object old = entries[2 * i + 1];
      entries[2 * i + 1] = value;
      return old;
    }
    if (2 * size == entries.length) {
      entries = Arrays.copyOf(entries, Math.max(8, 2 * entries.length));
    }
    entries[2 * size] = key;
    entries[2 * size + 1] = value;
    size++;
    modCount++;
    int[] slots = index;
    if (slots != null) {
      if (2 * size > slots.length) {
        index = null;
      } else {
        slots[freeSlot(slots, key)] = size;
      }
    }
    return null;
  }

  @Override
  @Nullable
  public Object remove(@Nullable Object key) {
    int i = find(key);
    if (i < 0) {
      return null;
    }
    Object old = entries[2 * i + 1];
    removeAt(i);
    return old;
  }

  @Override
  public void clear() {
    Arrays.fill(entries, 0, 2 * size, null);
    size = 0;
    index = null;
    modCount++;
  }

  @Override
  public Set<Map.Entry<String, Object>> entrySet() {
    return new AbstractSet<Map.Entry<String, Object>>() {
      @Override
      public int size() {
        return size;
      }

      @Override
      public Iterator<Map.Entry<String, Object>> iterator() {
        return new EntryIterator();
      }
    };
  }

  private static int hash(@Nullable Object key) {
    int h = key == null ? 0 : key.hashCode();
    return h ^ (h >>> 16);
  }

  /** The number of the entry of {@code key}; -1 when it has none. */
  private int find(@Nullable Object key) {
    Object[] e = entries;
    if (size <= LINEAR_MAX) {
      for (int i = 0; i < size; i++) {
        if (Objects.equals(key, e[2 * i])) {
          return i;
        }
      }
      return -1;
    }
    int[] slots = index;
    if (slots == null) {
      slots = buildIndex();
      index = slots;
    }
    int mask = slots.length - 1;
    for (int slot = hash(key) & mask;; slot = (slot + 1) & mask) {
      int number = slots[slot];
      if (number == 0) {
        return -1;
      }
      if (Objects.equals(key, e[2 * (number - 1)])) {
        return number - 1;
      }
    }
  }

  private static int freeSlot(int[] index, @Nullable Object key) {
    int mask = index.length - 1;
    int slot = hash(key) & mask;
    while (index[slot] != 0) {
      slot = (slot + 1) & mask;
    }
    return slot;
  }

  /** An index of all keys, at most half full. */
  private int[] buildIndex() {
    int[] fresh = new int[Integer.highestOneBit(2 * size - 1) << 1];
    for (int i = 0; i < size; i++) {
      fresh[freeSlot(fresh, entries[2 * i])] = i + 1;
    }
    return fresh;
  }

  private void removeAt(int i) {
    System.arraycopy(entries, 2 * i + 2, entries, 2 * i, 2 * (size - i - 1));
    size--;
    entries[2 * size] = null;
    entries[2 * size + 1] = null;
    modCount++;
    index = null;
  }

  private final class EntryIterator implements Iterator<Map.Entry<String, Object>> {
    private int next;
    private int last = -1;
    private int expectedModCount = modCount;

    @Override
    public boolean hasNext() {
      return next < size;
    }

    @Override
    public Map.Entry<String, Object> next() {
      if (modCount != expectedModCount) {
        throw new ConcurrentModificationException();
      }
      if (next >= size) {
        throw new NoSuchElementException();
      }
      last = next++;
      return new Entry(last);
    }

    @Override
    public void remove() {
      if (last < 0) {
        throw new IllegalStateException();
      }
      if (modCount != expectedModCount) {
        throw new ConcurrentModificationException();
      }
      removeAt(last);
      next = last;
      last = -1;
      expectedModCount = modCount;
    }
  }

  /** The entry at a position, reading and writing through to the map. */
  private final class Entry implements Map.Entry<String, Object> {
    private final int at;

    Entry(int at) {
      this.at = at;
    }

    @Override
    public String getKey() {
      return (String) entries[2 * at];
    }

    @Override
    public Object getValue() {
      return entries[2 * at + 1];
    }

    @Override
    public Object setValue(Object value) {
      Object old = entries[2 * at + 1];
      entries[2 * at + 1] = value;
      return old;
    }

    @Override
    public boolean equals(Object o) {
      return o instanceof Map.Entry && Objects.equals(getKey(), ((Map.Entry<?, ?>) o).getKey())
          && Objects.equals(getValue(), ((Map.Entry<?, ?>) o).getValue());
    }

    @Override
    public int hashCode() {
      return Objects.hashCode(getKey()) ^ Objects.hashCode(getValue());
    }

    @Override
    public String toString() {
      return getKey() + "=" + getValue();
    }
  }
}
