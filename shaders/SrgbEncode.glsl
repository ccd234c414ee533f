// Linear light to display-encoded (sRGB) values, for shaders whose inputs were decoded on sampling
// or computed in linear light while the overlay holds display-encoded colour.

vec3 Encode(vec3 linear) {
    vec3 low = linear * 12.92;
    vec3 high = 1.055 * pow(linear, vec3(1.0 / 2.4)) - 0.055;
    return mix(high, low, vec3(lessThanEqual(linear, vec3(0.0031308))));
}
