// SPDX-License-Identifier: MIT

// Operations on outlines by libraries of npm. benchmarks/outlines/run.py starts this and describes the lines that
// it reads and writes.
//
//   node peer.cjs canvaskit | skia | paper FOLDER_OF_NODE_MODULES

'use strict';
const Module = require('module');
const path = require('path');
const readline = require('readline');
const [who, modules] = process.argv.slice(2);
const load = (name) => require(path.join(modules, name));

/// The processor time until now, in microseconds.
function now() {
    const used = process.cpuUsage();
    return used.user + used.system;
}

/// The least processor time of up to five runs, and the last result. prepare() is not timed.
function timed(prepare, work) {
    let best = Infinity;
    let result = null;
    const end = now() + 200000;
    for (let i = 0; i < 5 && (i === 0 || now() < end); ++i) {
        const input = prepare();
        const begin = now();
        result = work(...input);
        best = Math.min(best, now() - begin);
    }
    if (!result) {
        throw new Error('no result');
    }
    return [best, result];
}

/// The segments of path text of absolute M, L, Q, C and Z, as Skia writes it.
function segments(text) {
    const found = [];
    for (const [, kind, numbers] of text.matchAll(/([A-Z])([^A-Z]*)/g)) {
        const values = (numbers.match(/[-+]?(?:\d+\.?\d*|\.\d+)(?:e[-+]?\d+)?/g) || []).map(Number);
        const count = {M: 2, L: 2, H: 1, V: 1, Q: 4, C: 6, Z: 0}[kind];
        if (kind === 'Z') {
            found.push(['Z']);
        }
        if (kind === 'H' || kind === 'V') {
            const last = found[found.length - 1].slice(-2);
            found.push(['L', kind === 'H' ? values[0] : last[0], kind === 'V' ? values[0] : last[1]]);
            continue;
        }
        for (let i = 0; count && i + count <= values.length; i += count) {
            found.push([kind, ...values.slice(i, i + count)]);
        }
    }
    return found;
}

const makers = {
    async canvaskit() {
        const kit = await load('canvaskit-wasm/bin/canvaskit.js')();
        const ops = {union: 'Union', intersection: 'Intersect', difference: 'Difference', xor: 'XOR'};
        const read = (operand) => {
            const made = kit.Path.MakeFromSVGString(operand.d);
            made.setFillType(operand.f === 'evenodd' ? kit.FillType.EvenOdd : kit.FillType.Winding);
            return made;
        };
        const kinds = ['M', 'L', 'Q', 'K', 'C', 'Z'];
        const counts = [2, 2, 4, 5, 6, 0];
        return (c) => {
            const a = read(c.a);
            const b = c.b ? read(c.b) : null;
            let work = () => (b ? kit.Path.MakeFromOp(a, b, kit.PathOp[ops[c.op]]) : (a.makeSimplified || a._makeSimplified).call(a));
            if (['fit', 'simplify', 'map'].includes(c.op)) {
                return {skip: 'has no such operation'};
            }
            if (c.op === 'stroke' || c.op === 'offset') {
                const options = {
                    width: c.width || 2 * Math.abs(c.distance),
                    join: kit.StrokeJoin[{miter: 'Miter', round: 'Round', bevel: 'Bevel'}[c.join || 'round']],
                    cap: kit.StrokeCap[{butt: 'Butt', round: 'Round', square: 'Square'}[c.cap || 'round']],
                    miter_limit: 4,
                    precision: 0.25 / c.tolerance, // its curves are within a quarter of a device's unit
                };
                work = () => a.makeStroked(options);
                if (c.op === 'offset') {
                    const op = kit.PathOp[c.distance > 0 ? 'Union' : 'Difference'];
                    work = () => kit.Path.MakeFromOp(a, a.makeStroked(options), op);
                }
            }
            const [us, result] = timed(() => [], work);
            const commands = result.toCmds();
            const d = [];
            for (let i = 0; i < commands.length;) {
                const verb = commands[i];
                d.push([kinds[verb], ...commands.subarray(i + 1, i + 1 + counts[verb])]);
                i += 1 + counts[verb];
            }
            const f = result.getFillType() === kit.FillType.EvenOdd ? 'evenodd' : 'nonzero';
            return {us, f, d};
        };
    },
    async skia() {
        const {Path2D, PathOp, FillType} = load('@napi-rs/canvas');
        const ops = {union: 'Union', intersection: 'Intersect', difference: 'Difference', xor: 'Xor'};
        const read = (operand) => {
            const made = new Path2D(operand.d);
            made.setFillType(operand.f === 'evenodd' ? FillType.EvenOdd : FillType.Winding);
            return made;
        };
        return (c) => {
            if (!ops[c.op]) {
                return {skip: 'takes no tolerance, or has no such operation'};
            }
            const a = read(c.a);
            const b = c.b ? read(c.b) : null;
            const copy = () => [Object.assign(new Path2D(a)), b];
            const [us, result] = timed(copy, (first, second) =>
                second ? first.op(second, PathOp[ops[c.op]]) : first.simplify());
            const f = result.getFillTypeString() === 'evenodd' ? 'evenodd' : 'nonzero';
            return {us, f, d: segments(result.toSVGString())};
        };
    },
    async paper() {
        const paper = load('paper/dist/paper-core.js');
        // The package paperjs-offset asks for all of paper.js, which would need a canvas.
        const resolve = Module._resolveFilename;
        Module._resolveFilename = (name, ...rest) =>
            resolve.call(Module, name === 'paper' ? path.join(modules, 'paper/dist/paper-core.js') : name, ...rest);
        const {PaperOffset} = load('paperjs-offset');
        paper.setup([1000, 1000]);
        paper.settings.insertItems = false;
        const read = (operand) => {
            const made = paper.PathItem.create(operand.d);
            made.fillRule = operand.f;
            return made;
        };
        const ops = {union: 'unite', intersection: 'intersect', difference: 'subtract', xor: 'exclude'};
        return (c) => {
            if (c.op === 'stroke' || c.op === 'map') {
                return {skip: 'has no such operation'};
            }
            const options = {insert: false};
            const prepare = () => [read(c.a), c.b ? read(c.b) : null];
            let work = (a, b) => (b ? a[ops[c.op]](b, options) : a.unite(undefined, options));
            if (c.op === 'offset') {
                work = (a) => PaperOffset.offset(a, c.distance, {join: 'round', insert: false});
            }
            if (c.op === 'fit' || c.op === 'simplify') {
                // It compares squares of distances with the number that it gets.
                work = (a) => {
                    (a.children || [a]).forEach((part) => part.simplify(c.tolerance * c.tolerance));
                    return a;
                };
            }
            const [us, result] = timed(prepare, work);
            const d = [];
            for (const part of result.children || [result]) {
                if (part.segments.length === 0) {
                    continue;
                }
                d.push(['M', part.firstSegment.point.x, part.firstSegment.point.y]);
                for (const curve of part.curves) {
                    const points = curve.isStraight()
                        ? [curve.point2]
                        : [curve.point1.add(curve.handle1), curve.point2.add(curve.handle2), curve.point2];
                    d.push([points.length === 1 ? 'L' : 'C', ...points.flatMap((p) => [p.x, p.y])]);
                }
                if (part.closed) {
                    d.push(['Z']);
                }
            }
            return {us, f: result.fillRule === 'evenodd' ? 'evenodd' : 'nonzero', d};
        };
    },
};

makers[who]().then((answer) => {
    readline.createInterface({input: process.stdin}).on('line', (line) => {
        let reply;
        try {
            reply = answer(JSON.parse(line));
        } catch (error) {
            reply = {error: String(error && error.message ? error.message : error)};
        }
        process.stdout.write(JSON.stringify(reply) + '\n');
    });
});
