export function quantile(values, share) {
  const sorted = [...values].sort((a, b) => a - b);
  const position = (sorted.length - 1) * share;
  const below = Math.floor(position);
  const above = Math.ceil(position);
  return sorted[below] + (sorted[above] - sorted[below]) * (position - below);
}

export const median = (values) => quantile(values, 0.5);

// Returns the medians of paired times, the median of the pairs' ratios, and the quartiles of those
// ratios. The median of ratios does not move when the machine's load changes half-way.
export function compare(pairs) {
  const ratios = pairs.map((pair) => pair.library / pair.bare);
  return {
    library: median(pairs.map((pair) => pair.library)),
    bare: median(pairs.map((pair) => pair.bare)),
    ratio: median(ratios),
    quartiles: [quantile(ratios, 0.25), quantile(ratios, 0.75)],
    pairs: pairs.length,
  };
}
