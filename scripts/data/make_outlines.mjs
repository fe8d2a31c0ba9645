#!/usr/bin/env node
// Makes data/outlines.bin from the Natural Earth land and countries that the npm package world-atlas ships.
//     scripts/data/make_outlines.mjs [OUTPUT]
// Needs node 20 and npm. src/geo/WorldOutlines.h describes the file.
import fs from 'node:fs';

import {assemble, Writer} from './lib/bytes.mjs';
import {installPackages, outputPath} from './lib/npm_package.mjs';
import {simplified} from './lib/polyline.mjs';

const unitsPerDegree = 400;
const half = 180 * unitsPerDegree;
const pole = 90 * unitsPerDegree;

// Tolerance in units; coarse tiles hold more, so that a view of the world asks for few.
const levels = [
    {scale: '110m', tileDegrees: 60, tolerance: 0},
    {scale: '50m', tileDegrees: 30, tolerance: 0.7},
    {scale: '10m', tileDegrees: 10, tolerance: 0.4},
];

const packages = installPackages('world-atlas@2.0.2');

function topology(name) {
    const source = JSON.parse(fs.readFileSync(packages.file('world-atlas', `${name}.json`)));
    const {scale, translate} = source.transform;
    const arcs = source.arcs.map(arc => {
        let [x, y] = [0, 0];
        return arc.map(([dx, dy]) => {
            [x, y] = [x + dx, y + dy];
            return [Math.round((x * scale[0] + translate[0]) * unitsPerDegree),
                    Math.round((y * scale[1] + translate[1]) * unitsPerDegree)];
        });
    });
    return {arcs, objects: source.objects};
}

/** The points on one sheet: no step is longer than half the world. */
function unrolled(points) {
    let turn = 0;
    return points.map(([x, y], i) => {
        if (i && x - points[i - 1][0] > half) turn -= 2 * half;
        if (i && x - points[i - 1][0] < -half) turn += 2 * half;
        return [x + turn, y];
    });
}

function withoutRepeats(points) {
    return points.filter(([x, y], i) => !i || x !== points[i - 1][0] || y !== points[i - 1][1]);
}

function ringOf(arcs, numbers) {
    const points = [];
    for (const number of numbers) {
        const arc = number < 0 ? arcs[~number].toReversed() : arcs[number];
        points.push(...(points.length ? arc.slice(1) : arc));
    }
    const ring = unrolled(points);
    const first = ring[0];
    const last = ring.at(-1);
    if (first[0] !== last[0]) {
        // Once around the pole: down at both ends and along it.
        const side = first[1] < 0 ? -pole : pole;
        ring.push([last[0], side], [first[0], side], first);
    }
    return ring;
}

/** One cut of Sutherland and Hodgman: the part of a closed ring where coordinate `axis` times sign is at
 *  least `bound` times sign. Cut polygons run along the cut line. */
function cutRing(ring, axis, bound, sign) {
    const inside = point => (point[axis] - bound) * sign >= 0;
    const result = [];
    for (let i = 1; i < ring.length; ++i) {
        const [a, b] = [ring[i - 1], ring[i]];
        if (inside(a) !== inside(b)) result.push(crossing(a, b, axis, bound));
        if (inside(b)) result.push(b);
    }
    if (result.length) result.push(result[0]);
    return withoutRepeats(result);
}

/** The same for an open line, which falls into pieces. */
function cutLine(line, axis, bound, sign) {
    const inside = point => (point[axis] - bound) * sign >= 0;
    const pieces = [];
    let piece = inside(line[0]) ? [line[0]] : [];
    for (let i = 1; i < line.length; ++i) {
        const [a, b] = [line[i - 1], line[i]];
        if (inside(a) !== inside(b)) piece.push(crossing(a, b, axis, bound));
        if (inside(b)) {
            piece.push(b);
        } else if (piece.length) {
            pieces.push(piece);
            piece = [];
        }
    }
    if (piece.length) pieces.push(piece);
    return pieces.map(withoutRepeats).filter(points => points.length > 1);
}

function crossing(a, b, axis, bound) {
    // From the smaller end always, so that both sides of a cut get the same point.
    const [p, q] = a[axis] < b[axis] ? [a, b] : [b, a];
    const other = Math.round(p[1 - axis] + (q[1 - axis] - p[1 - axis]) * (bound - p[axis]) / (q[axis] - p[axis]));
    return axis ? [other, bound] : [bound, other];
}

function extent(parts, axis) {
    let [low, high] = [Infinity, -Infinity];
    for (const part of parts) {
        for (const point of part) {
            low = Math.min(low, point[axis]);
            high = Math.max(high, point[axis]);
        }
    }
    return [low, high];
}

/** The source marks the origin of coordinates by an island. */
const isNullIsland = ring => ring.every(([x, y]) => Math.abs(x) < 10 && Math.abs(y) < 10);

const isArea = ring => ring.length > 3;

/** Cuts a shape (a list of rings, or of lines) into the tiles of a level. */
function tile(shape, cut, size, put) {
    const step = size * unitsPerDegree;
    const split = (parts, axis, low, high, done) => {
        if (!parts.length) return;
        if (high - low === step) return done(parts, low);
        const middle = low + Math.ceil((high - low) / step / 2) * step;
        const [least, most] = extent(parts, axis);
        if (least < middle) split(most <= middle ? parts : cut(parts, axis, middle, -1), axis, low, middle, done);
        if (most > middle || least >= middle) {
            split(least >= middle ? parts : cut(parts, axis, middle, 1), axis, middle, high, done);
        }
    };
    const [west, east] = extent(shape, 0);
    for (const turn of [-2 * half, 0, 2 * half]) {
        if (east + turn < -half || west + turn > half) continue;
        let parts = shape.map(part => part.map(([x, y]) => [x + turn, y]));
        if (west + turn < -half) parts = cut(parts, 0, -half, 1);
        if (east + turn > half) parts = cut(parts, 0, half, -1);
        split(parts, 0, -half, half, (column, x) => {
            split(column, 1, -pole, pole, (cell, y) => {
                put(Math.round((y + pole) / step) * (360 / size) + Math.round((x + half) / step), x, y, cell);
            });
        });
    }
}

const cutRings = (rings, axis, bound, sign) => rings.map(ring => cutRing(ring, axis, bound, sign)).filter(isArea);
const cutLines = (lines, axis, bound, sign) => lines.flatMap(line => cutLine(line, axis, bound, sign));

function writePoints(out, points, west, south) {
    let [x, y] = [west, south];
    out.varint(points.length);
    for (const point of points) {
        out.signed(point[0] - x).signed(point[1] - y);
        [x, y] = point;
    }
}

function makeLevel({scale, tileDegrees, tolerance}) {
    const tiles = Array.from({length: 360 / tileDegrees * 180 / tileDegrees},
                             () => ({land: [], borders: []}));
    let points = 0;

    const land = topology(`land-${scale}`);
    land.arcs = land.arcs.map(arc => withoutRepeats(simplifiedArc(arc, tolerance)));
    for (const geometry of land.objects.land.geometries) {
        for (const polygon of geometry.type === 'Polygon' ? [geometry.arcs] : geometry.arcs) {
            const rings = polygon.map(numbers => ringOf(land.arcs, numbers)).filter(isArea);
            if (!rings.length || isNullIsland(rings[0])) continue;
            const [west, east] = extent([rings[0]], 0);
            // A ring that crosses the date line may lie a turn away from its holes.
            rings.forEach((ring, i) => {
                const [low, high] = extent([ring], 0);
                const turn = low < west ? 2 * half : high > east ? -2 * half : 0;
                if (i) rings[i] = ring.map(([x, y]) => [x + turn, y]);
            });
            tile(rings, cutRings, tileDegrees, (number, west, south, cell) => {
                tiles[number].land.push({west, south, cell});
                points += cell.reduce((sum, ring) => sum + ring.length, 0);
            });
        }
    }

    const countries = topology(`countries-${scale}`);
    const owners = countries.arcs.map(() => new Set());
    const own = (arcs, country) => {
        for (const arc of arcs) Array.isArray(arc) ? own(arc, country) : owners[arc < 0 ? ~arc : arc].add(country);
    };
    countries.objects.countries.geometries.forEach((geometry, country) => own(geometry.arcs ?? [], country));
    countries.arcs.forEach((arc, number) => {
        if (owners[number].size < 2) return;
        const line = withoutRepeats(simplifiedArc(arc, tolerance));
        if (line.length < 2) return;
        tile([line], cutLines, tileDegrees, (tileNumber, west, south, cell) => {
            for (const piece of cell) tiles[tileNumber].borders.push({west, south, piece});
            points += cell.reduce((sum, piece) => sum + piece.length, 0);
        });
    });

    const offsets = new Writer();
    const bytes = new Writer();
    for (const {land: polygons, borders} of tiles) {
        offsets.u32(bytes.size);
        if (!polygons.length && !borders.length) continue;
        bytes.varint(polygons.length);
        for (const {west, south, cell} of polygons) {
            bytes.varint(cell.length);
            for (const ring of cell) writePoints(bytes, ring, west, south);
        }
        bytes.varint(borders.length);
        for (const {west, south, piece} of borders) writePoints(bytes, piece, west, south);
    }
    offsets.u32(bytes.size);
    console.log(`${scale}: ${points} points, ${bytes.size} bytes in tiles of ${tileDegrees} degrees`);
    return [new Writer().u32(tileDegrees), offsets, bytes];
}

function simplifiedArc(arc, tolerance) {
    const line = unrolled(arc);
    if (!tolerance) return line;
    // One latitude's scale for the whole arc: its points stand closer together towards the poles.
    const middle = (line[0][1] + line.at(-1)[1]) / 2 / unitsPerDegree;
    const fewer = simplified(line, tolerance, Math.max(0.1, Math.cos(middle * Math.PI / 180)), 1);
    // A small island stays an island.
    const closed = arc[0][0] === arc.at(-1)[0] && arc[0][1] === arc.at(-1)[1];
    return closed && fewer.length < 4 ? line : fewer;
}

const file = assemble('ZKOL', 1, levels.length, levels.flatMap(makeLevel));
fs.writeFileSync(outputPath('outlines.bin'), file);
console.log(`${file.length} bytes`);
