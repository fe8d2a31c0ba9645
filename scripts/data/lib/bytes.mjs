// Little-endian bytes, as src/geo/Bytes.h reads them.
export class Writer {
    #bytes = [];

    get size() {
        return this.#bytes.length;
    }
    text(value) {
        return this.append(Buffer.from(value, 'utf8'));
    }
    append(bytes) {
        for (const byte of bytes) this.#bytes.push(byte);
        return this;
    }
    u8(value) {
        return this.#fixed(value, 1);
    }
    u16(value) {
        return this.#fixed(value, 2);
    }
    u32(value) {
        return this.#fixed(value, 4);
    }
    i32(value) {
        return this.#fixed(value >>> 0, 4);
    }
    /** Seven bits a byte, low ones first, the top bit set on all bytes but the last. */
    varint(value) {
        if (!Number.isInteger(value) || value < 0 || value >= 2 ** 32) throw new Error(`no varint: ${value}`);
        for (; value > 127; value = Math.floor(value / 128)) this.#bytes.push((value % 128) | 128);
        this.#bytes.push(value);
        return this;
    }
    /** 0, -1, 1, -2, ... as the varints 0, 1, 2, 3, ... */
    signed(value) {
        return this.varint(value < 0 ? -2 * value - 1 : 2 * value);
    }
    align(size) {
        while (this.#bytes.length % size) this.#bytes.push(0);
        return this;
    }
    buffer() {
        return Buffer.from(this.#bytes);
    }
    #fixed(value, size) {
        if (!Number.isInteger(value) || value < 0 || value >= 256 ** size)
            throw new Error(`${value} does not fit ${size} bytes`);
        for (let i = 0; i < size; ++i, value = Math.floor(value / 256)) this.#bytes.push(value % 256);
        return this;
    }
}

/** A file of sections: magic, u16 version, u16 extra, u32 offset of each section and of the end. */
export function assemble(magic, version, extra, sections) {
    const head = new Writer().text(magic).u16(version).u16(extra);
    let offset = head.size + 4 * (sections.length + 1);
    const padded = sections.map(section => section.align(4).buffer());
    for (const section of padded) {
        head.u32(offset);
        offset += section.length;
    }
    head.u32(offset);
    return Buffer.concat([head.buffer(), ...padded]);
}
