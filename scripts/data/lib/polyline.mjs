// Fewer points for a line, none of which leaves it by more than a tolerance.

/** Douglas and Peucker's choice of the points [x, y] of a line; the ends stay. A closed line (first point
 *  equal to the last) is held open at its point farthest from the ends. Scales turn x, y into metres. */
export function simplified(points, tolerance, scaleX = 1, scaleY = 1) {
    const count = points.length;
    if (count < 3) return points;
    const keep = new Uint8Array(count);
    keep[0] = keep[count - 1] = 1;
    const stack = [];
    if (points[0][0] === points[count - 1][0] && points[0][1] === points[count - 1][1]) {
        let far = 0;
        let farthest = -1;
        for (let i = 1; i < count - 1; ++i) {
            const d = squared((points[i][0] - points[0][0]) * scaleX, (points[i][1] - points[0][1]) * scaleY);
            if (d > farthest) [far, farthest] = [i, d];
        }
        keep[far] = 1;
        stack.push([0, far], [far, count - 1]);
    } else {
        stack.push([0, count - 1]);
    }
    while (stack.length) {
        const [first, last] = stack.pop();
        let far = 0;
        let farthest = tolerance * tolerance;
        for (let i = first + 1; i < last; ++i) {
            const d = toSegment(points[i], points[first], points[last], scaleX, scaleY);
            if (d > farthest) [far, farthest] = [i, d];
        }
        if (far) {
            keep[far] = 1;
            stack.push([first, far], [far, last]);
        }
    }
    return points.filter((_, i) => keep[i]);
}

function squared(x, y) {
    return x * x + y * y;
}

function toSegment(p, a, b, scaleX, scaleY) {
    const dx = (b[0] - a[0]) * scaleX;
    const dy = (b[1] - a[1]) * scaleY;
    const px = (p[0] - a[0]) * scaleX;
    const py = (p[1] - a[1]) * scaleY;
    const length = dx * dx + dy * dy;
    const t = length > 0 ? Math.min(1, Math.max(0, (px * dx + py * dy) / length)) : 0;
    return squared(px - t * dx, py - t * dy);
}
