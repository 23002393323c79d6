export function quantile(values, share) {
  const sorted = [...values].sort((a, b) => a - b);
  const position = (sorted.length - 1) * share;
  const below = Math.floor(position);
  const above = Math.ceil(position);
  return sorted[below] + (sorted[above] - sorted[below]) * (position - below);
}

export const median = (values) => quantile(values, 0.5);

// Of paired times: the ratio of the medians, and how far the ratios of the middle half of the pairs
// lie apart.
export function compare(pairs) {
  const library = median(pairs.map((pair) => pair.library));
  const bare = median(pairs.map((pair) => pair.bare));
  const ratios = pairs.map((pair) => pair.library / pair.bare);
  return {
    library,
    bare,
    ratio: library / bare,
    quartiles: [quantile(ratios, 0.25), quantile(ratios, 0.75)],
    pairs: pairs.length,
  };
}
